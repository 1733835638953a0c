#pragma once

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "link/bluetooth_central.h"
#include "sim/simulated_phone.h"

namespace orbinex {

/// A Bluetooth central with simulated phones in the air. With a virtual main queue everything it does is
/// deterministic.
class SimulatedRadio final : public BluetoothCentral {
  public:
    explicit SimulatedRadio(MainQueue& queue, BluetoothState state = BluetoothState::poweredOn);
    ~SimulatedRadio() override;

    /// Adds a phone; it stays as long as the radio.
    SimulatedPhone& addPhone(const UUID& identifier, DeviceInfo info);
    [[nodiscard]] const std::list<SimulatedPhone>& phones() const { return phones_; }

    /// Losing power ends every link without a word; only the new state is reported.
    void setState(BluetoothState state);
    [[nodiscard]] BluetoothState state() const { return state_; }
    /// Whether a cancelled request that was not connected yet is reported as disconnected.
    void setReportsCancelledRequests(bool reports) { reportsCancelledRequests_ = reports; }
    /// Whether any link stands or is wanted; scanning aside.
    [[nodiscard]] std::size_t connectedCount() const;
    [[nodiscard]] std::size_t requestCount() const;

    // BluetoothCentral
    void start(Delegate& delegate) override;
    void stop() override;
    [[nodiscard]] bool isScanning() const override { return scanTimer_.isActive(); }
    void startScan(const UUID& service) override;
    void stopScan() override;
    [[nodiscard]] std::vector<Peripheral> retrievePeripherals(std::span<const UUID> identifiers) override;
    [[nodiscard]] std::vector<Peripheral> retrieveConnectedPeripherals(const UUID& service) override;
    void connect(const Peripheral& peripheral, Initiative initiative) override;
    void cancelConnection(const UUID& peripheral) override;
    [[nodiscard]] bool isConnected(const UUID& peripheral) const override;
    void discoverServices(const UUID& peripheral, std::span<const UUID> services) override;
    void discoverCharacteristics(const UUID& peripheral, const UUID& service,
                                 std::span<const UUID> characteristics) override;
    void readValue(const UUID& peripheral, const UUID& characteristic) override;
    void setNotify(const UUID& peripheral, const UUID& characteristic, bool enabled) override;
    void writeValue(const UUID& peripheral, const UUID& characteristic, ByteView value,
                    WriteType type) override;

  private:
    friend class SimulatedPhone;

    enum class LinkState { idle, requested, connected, cancelling };
    /// What stands between this computer and one peripheral identifier.
    struct Link {
        LinkState state = LinkState::idle;
        bool isWantedAgain = false;
        std::set<UUID> notifying;
        std::list<Timer> steps;  ///< under way; a link that ends takes them along
    };
    using Report = std::function<void(Delegate&, const Peripheral&)>;

    [[nodiscard]] SimulatedPhone* phoneWith(const UUID& identifier);
    [[nodiscard]] Peripheral peripheralFor(const UUID& identifier);
    [[nodiscard]] Link* connectedLink(const UUID& identifier);
    void report(const UUID& peripheral, const Report& report);
    void schedule(Link& link, std::chrono::nanoseconds delay, MainQueue::Job job);
    /// Answers one step of a connected peripheral as the phone is set to.
    void answer(const UUID& peripheral, const PhoneStep& step, Report report);
    void advertise();
    void tryRequest(const UUID& peripheral);
    void endLink(const UUID& peripheral, const std::optional<BluetoothError>& error);
    void reconsider(SimulatedPhone& phone);
    void deliver(const UUID& peripheral, const UUID& characteristic, ByteView value);

    MainQueue& queue_;
    BluetoothState state_;
    Delegate* delegate_ = nullptr;
    std::list<SimulatedPhone> phones_;
    std::map<UUID, Link> links_;
    std::map<UUID, std::string> seenNames_;  ///< of every identifier that was ever in the air
    Timer scanTimer_;
    Timer firstSightTimer_;
    bool reportsCancelledRequests_ = true;
    Lifetime lifetime_;
};

}  // namespace orbinex
