#pragma once

#include <array>
#include <utility>
#include <vector>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "link/bluetooth_central.h"
#include "protocol/device_info.h"
#include "protocol/gatt.h"

namespace orbinex::test {

/// A Bluetooth central with one iPhone that answers every step of a connection in the next turn of the queue.
/// Its notifications reach the delegate with nothing in between, so that what they cost is the program's
/// cost.
class DirectCentral final : public BluetoothCentral {
  public:
    explicit DirectCentral(MainQueue& queue) : queue_(queue) {}

    const Peripheral phone{UUID::random(), "iPhone"};

    /// Hands the value of a characteristic to the delegate, here and now.
    void notify(const UUID& characteristic, ByteView value) {
        delegate_->valueUpdated(phone, characteristic, value, nullptr);
    }

    void start(Delegate& delegate) override {
        delegate_ = &delegate;
        answer([this] { delegate_->bluetoothStateUpdated(BluetoothState::poweredOn); });
    }
    void stop() override { delegate_ = nullptr; }
    [[nodiscard]] bool isScanning() const override { return false; }
    void startScan(const UUID&) override {}
    void stopScan() override {}
    [[nodiscard]] std::vector<Peripheral> retrievePeripherals(std::span<const UUID>) override { return {}; }
    [[nodiscard]] std::vector<Peripheral> retrieveConnectedPeripherals(const UUID&) override { return {}; }
    void connect(const Peripheral&, Initiative) override {
        isConnected_ = true;
        answer([this] { delegate_->peripheralConnected(phone); });
    }
    void cancelConnection(const UUID&) override { isConnected_ = false; }
    [[nodiscard]] bool isConnected(const UUID&) const override { return isConnected_; }
    void discoverServices(const UUID&, std::span<const UUID>) override {
        answer([this] {
            delegate_->servicesDiscovered(phone, std::array{OrbinexProtocol::serviceUUID}, nullptr);
        });
    }
    void discoverCharacteristics(const UUID&, const UUID& service,
                                 std::span<const UUID> characteristics) override {
        std::vector<Characteristic> found;
        for (const UUID& uuid : characteristics) found.push_back({uuid, true});
        answer([this, service, found = std::move(found)] {
            delegate_->characteristicsDiscovered(phone, service, found, nullptr);
        });
    }
    void readValue(const UUID&, const UUID& characteristic) override {
        answer([this, characteristic, value = info_.encode()] { notify(characteristic, value); });
    }
    void setNotify(const UUID&, const UUID& characteristic, bool enabled) override {
        answer([this, characteristic, enabled] {
            delegate_->notificationStateUpdated(phone, characteristic, enabled, nullptr);
        });
    }
    void writeValue(const UUID&, const UUID&, ByteView, WriteType) override {}

  private:
    template <class Step>
    void answer(Step step) {
        queue_.post(lifetime_.guard([this, step = std::move(step)] {
            if (delegate_) step();
        }));
    }

    MainQueue& queue_;
    const DeviceInfo info_{OrbinexProtocol::protocolVersion, UUID::random(), "iPhone"};
    Delegate* delegate_ = nullptr;
    bool isConnected_ = false;
    Lifetime lifetime_;
};

}  // namespace orbinex::test
