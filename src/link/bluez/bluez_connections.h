#pragma once

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "link/bluetooth_central.h"
#include "link/bluez/bluez_bus.h"
#include "link/bluez/bluez_devices.h"
#include "link/bluez/bluez_sightings.h"
#include "link/bluez/connect_step.h"

namespace orbinex {

/// Keeps connect requests open for as long as the link wants them, over whatever BlueZ makes of single calls,
/// and ends connections.
class BluezConnections {
  public:
    /// BlueZ 5.66 gives up after some 41 s; no answer after this means that it hangs.
    static constexpr std::chrono::seconds connectLimit{60};

    struct Handlers {
        std::function<void(const UUID&)> onConnected;
        std::function<void(const UUID&, const BluetoothError*)> onFailed;
        std::function<void(const UUID&, const BluetoothError*)> onDisconnected;
        /// It is to be asked whether the device is connected; its review follows, and then `done`.
        std::function<void(const UUID&, std::function<void()> done)> askWhetherConnected;
        /// Calls to connect are under way, or no longer. BlueZ connects nothing while it discovers.
        std::function<void(bool)> onConnecting;
    };

    BluezConnections(BluezBus& bus, MainQueue& queue, const BluezDevices& devices,
                     const BluezSightings& sightings, Handlers handlers)
        : bus_(bus),
          queue_(queue),
          devices_(devices),
          sightings_(sightings),
          handlers_(std::move(handlers)) {}

    /// Forgets everything without a word or a call.
    void clear();
    /// Calls off everything, and forgets it.
    void endAll();

    void connect(const Peripheral& device, Initiative initiative);
    void cancel(const UUID& device);
    /// True for a connection that was reported and stands.
    [[nodiscard]] bool isConnected(const UUID& device) const;
    /// Connected over Low Energy as far as is known, by anybody.
    [[nodiscard]] bool isLinked(const UUID& device) const;
    /// At whose wish it was connected.
    [[nodiscard]] Initiative initiative(const UUID& device) const;
    /// What the link called it when it last asked for a connection.
    [[nodiscard]] std::string name(const UUID& device) const;

    /// Something about the device is different, or it was heard.
    void review(const UUID& device);
    void reviewAll();
    /// The device has become bonded. True when that happened on a connection of ours without a pairing that
    /// the user was asked about: a device can bring a bond about by itself, and nothing may rest on that.
    bool noteBond(const UUID& device);
    [[nodiscard]] bool isBondUnasked(const UUID& device) const;
    /// While a device is being paired, the end of its connection is not reported.
    void setPairing(const UUID& device, bool isPairing);

  private:
    struct Contact {
        std::optional<Initiative> wish;
        std::string name;
        Initiative initiative = Initiative::program;
        bool isReported = false;
        bool isPairing = false;
        bool hasPaired = false;      ///< the user was asked, on this connection
        bool isBondUnasked = false;  ///< on this connection
        bool isConnecting = false;   ///< until it is known what came of it
        bool isCancelling = false;
        bool isDisconnecting = false;
        bool hasDropped = false;  ///< since the Connect call was made
        /// A Connect call has succeeded since; where a device may be connected over classic Bluetooth, only
        /// that tells.
        bool isLowEnergy = false;
        bool wereServicesResolved = false;
        std::chrono::nanoseconds callBegan{0};
        std::optional<std::chrono::nanoseconds> connectedSince;
        std::chrono::nanoseconds restsUntil{0};
        /// Connections in a row that this device, though bonded, ended at once.
        int promptFailures = 0;
        Timer rest;
    };

    void noteConnection(const UUID& device);
    void noteBearer(Contact& contact, const std::optional<BluezDevice>& object);
    [[nodiscard]] ConnectFacts facts(const UUID& device, const Contact& contact) const;
    void later(const UUID& device);
    bool perform(ConnectStep step, const UUID& device);
    void callConnect(const UUID& device);
    void connectAnswered(const UUID& device, const BluezBus::Reply& reply);
    void connectEnded(const UUID& device, const BluezBus::Reply& reply);
    void failedAtOnce(const UUID& device, const BluezError& error);
    void callDisconnect(const UUID& device);
    void reportDisconnected(const UUID& device);
    void tellConnecting();
    void rest(Contact& contact, std::chrono::nanoseconds time);
    [[nodiscard]] Contact* contact(const UUID& device);

    BluezBus& bus_;
    MainQueue& queue_;
    const BluezDevices& devices_;
    const BluezSightings& sightings_;
    Handlers handlers_;
    std::map<UUID, Contact> contacts_;
    bool wasConnecting_ = false;
    /// Answers to calls that were made before everything was forgotten are for nobody.
    std::unique_ptr<Lifetime> calls_ = std::make_unique<Lifetime>();
};

}  // namespace orbinex
