#pragma once

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "link/bluetooth_central.h"

namespace orbinex {

/// The central of a computer without usable Bluetooth: it reports that once, and nothing comes of any
/// request.
class AbsentBluetooth final : public BluetoothCentral {
  public:
    explicit AbsentBluetooth(MainQueue& queue) : queue_(queue) {}

    void start(Delegate& delegate) override {
        delegate_ = &delegate;
        queue_.post(lifetime_.guard([this] {
            if (delegate_) delegate_->bluetoothStateUpdated(BluetoothState::unsupported);
        }));
    }
    void stop() override { delegate_ = nullptr; }
    [[nodiscard]] bool isScanning() const override { return false; }
    void startScan(const UUID&) override {}
    void stopScan() override {}
    [[nodiscard]] std::vector<Peripheral> retrievePeripherals(std::span<const UUID>) override { return {}; }
    [[nodiscard]] std::vector<Peripheral> retrieveConnectedPeripherals(const UUID&) override { return {}; }
    void connect(const UUID&, Initiative) override {}
    void cancelConnection(const UUID&) override {}
    [[nodiscard]] bool isConnected(const UUID&) const override { return false; }
    void discoverServices(const UUID&, std::span<const UUID>) override {}
    void discoverCharacteristics(const UUID&, const UUID&, std::span<const UUID>) override {}
    void readValue(const UUID&, const UUID&) override {}
    void setNotify(const UUID&, const UUID&, bool) override {}
    void writeValue(const UUID&, const UUID&, ByteView, WriteType) override {}

  private:
    MainQueue& queue_;
    Delegate* delegate_ = nullptr;
    Lifetime lifetime_;
};

}  // namespace orbinex
