#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/published.h"
#include "editor_bridge/editor_bridge.h"
#include "link/bluetooth_central.h"
#include "link/link_model.h"
#include "link/nearby_device.h"
#include "link/reconnect_backoff.h"
#include "link/suppression_book.h"
#include "link/wake_notifier.h"
#include "protocol/input_packet.h"
#include "protocol/session_records.h"
#include "trust/trusted_device_store.h"

namespace orbinex {

/// This computer's one Bluetooth central. It finds iPhones that advertise the Orbinex service, connects the
/// trusted ones by itself and others at the user's wish, brings up the session, keeps it, and tells in its
/// published state what is going on. Main thread only.
///
/// One source file a duty: central_ble_manager.cpp the object and Bluetooth's power, discovery.cpp scanning
/// and the nearby list, connecting.cpp attempts and their ends, handshake.cpp from the link to the connected
/// state, session.cpp its traffic and its end, reconnect.cpp retries, suppressions and background requests.
class CentralBLEManager final : private BluetoothCentral::Delegate {
  public:
    using Phase = LinkPhase;

    /// What the manager works with; all of it must outlive the manager.
    struct Ports {
        MainQueue& queue;
        BluetoothCentral& central;
        WakeNotifier& wake;
        EditorBridge& bridge;
        /// This computer's name for the iPhone to show, empty when it has none; asked for at every greeting.
        std::function<std::string()> computerName;
    };

    // Link timing.
    static constexpr std::chrono::seconds userConnectTimeout{20};
    static constexpr std::chrono::seconds automaticConnectTimeout{12};
    static constexpr std::chrono::seconds handshakeTimeout{45};
    static constexpr std::chrono::seconds pruneInterval{2};
    static constexpr std::chrono::seconds rescanDuration{10};
    static constexpr std::chrono::milliseconds restartAfterWake{1500};
    /// How long a goodbye has to leave before the connection is cancelled.
    static constexpr std::chrono::milliseconds goodbyeTime{150};

    /// Starts the central at once.
    CentralBLEManager(TrustedDeviceStore& trustStore, Ports ports);
    CentralBLEManager(const CentralBLEManager&) = delete;
    CentralBLEManager& operator=(const CentralBLEManager&) = delete;
    /// Ends a connected session as onConnectionLost tells, and stops the central.
    ~CentralBLEManager();

    Published<Phase, CentralBLEManager> phase{Phase::searching};
    Published<BluetoothState, CentralBLEManager> bluetoothState{BluetoothState::unknown};
    /// In the order in which they were first heard.
    Published<NearbyList, CentralBLEManager> nearbyDevices;
    Published<std::optional<ActiveDevice>, CentralBLEManager> activeDevice;
    Published<std::string, CentralBLEManager> statusMessage;
    Published<bool, CentralBLEManager> isScanning{false};
    /// The alert to be shown, until dismissAlert().
    Published<std::optional<BLEAlert>, CentralBLEManager> alert;

    /// Every input packet of a connected session, in order.
    std::function<void(const DecodedPacket&)> onInputPacket;
    /// A connected session has ended, however it did.
    std::function<void()> onConnectionLost;

    /// Whether trusted iPhones are connected without being asked; true at creation.
    [[nodiscard]] bool autoConnectEnabled() const { return autoConnectEnabled_; }
    void setAutoConnectEnabled(bool enabled);

    // What the user asks for. A wish that the present phase does not offer does no harm.
    /// Connects an entry of the nearby list and lifts what suppresses it; an unknown id is ignored.
    void connectNearbyDevice(const UUID& id);
    /// Connects a peripheral under the given display name, in place of any other iPhone.
    void connectPeripheral(const Peripheral& peripheral, const std::string& name);
    void connectTrustedDevice(const TrustedDevice& device);
    void cancelConnectionAttempt();
    void disconnect();
    void forgetDevice(const TrustedDevice& device);
    /// The alert has been read.
    void dismissAlert() { alert = std::nullopt; }
    /// Searches anew, and connects what was found without a service before.
    void rescan();

    /// iPhones nearby that are not trusted, strongest signal first.
    [[nodiscard]] NearbyList untrustedNearbyDevices() const { return untrustedNearby(*nearbyDevices); }
    [[nodiscard]] bool isNearby(const UUID& trustedDeviceID) const;
    /// True for the iPhone that is being connected or is connected.
    [[nodiscard]] bool isActive(const TrustedDevice& device) const;
    [[nodiscard]] const std::optional<Session>& session() const { return session_; }
    [[nodiscard]] bool isRetryScheduled() const { return retryTimer_.isActive(); }

    // To the iPhone; dropped while there is no session that can take it.
    /// An empty identifier is not sent.
    void sendActiveApp(const std::string& bundleID);
    void sendTelemetry(const SessionTelemetry& telemetry);
    /// A complete control message.
    void sendControlData(ByteView message);

  private:
    // BluetoothCentral::Delegate
    void bluetoothStateUpdated(BluetoothState state) override;
    void peripheralDiscovered(const Advertisement& advertisement) override;
    void peripheralConnected(const Peripheral& peripheral) override;
    void peripheralFailedToConnect(const Peripheral& peripheral, const BluetoothError* error) override;
    void peripheralDisconnected(const Peripheral& peripheral, const BluetoothError* error) override;
    void servicesDiscovered(const Peripheral& peripheral, std::span<const UUID> services,
                            const BluetoothError* error) override;
    void characteristicsDiscovered(const Peripheral& peripheral, const UUID& service,
                                   std::span<const Characteristic> characteristics,
                                   const BluetoothError* error) override;
    void valueUpdated(const Peripheral& peripheral, const UUID& characteristic, ByteView value,
                      const BluetoothError* error) override;
    void notificationStateUpdated(const Peripheral& peripheral, const UUID& characteristic, bool isNotifying,
                                  const BluetoothError* error) override;
    void servicesInvalidated(const Peripheral& peripheral, std::span<const UUID> services) override;

    // central_ble_manager.cpp
    [[nodiscard]] bool isPoweredOn() const { return *bluetoothState == BluetoothState::poweredOn; }
    [[nodiscard]] Phase idlePhase() const {
        return isPoweredOn() ? Phase::searching : Phase::bluetoothUnavailable;
    }
    [[nodiscard]] bool hasSessionWith(const UUID& peripheral) const;
    [[nodiscard]] bool hasAttemptFor(const UUID& peripheral) const;
    [[nodiscard]] std::optional<UUID> trustedIDForPeripheral(const UUID& peripheral) const;
    [[nodiscard]] std::string activeName(const char* otherwise) const;
    void connectBridge();

    // discovery.cpp
    void resumeDiscovery();
    void startScanning(std::optional<std::chrono::seconds> duration = std::nullopt);
    void stopScanning();
    void stopLooking();
    void pruneNearby();
    void relinkNearbyDevices();
    [[nodiscard]] std::optional<TrustedDevice> trustedMatch(const UUID& peripheral,
                                                            const std::optional<std::string>& token) const;
    [[nodiscard]] bool mayAutoConnect(const UUID& peripheral, const std::optional<UUID>& device) const;
    void queueKnownPeripherals();

    // connecting.cpp
    void beginConnect(const Peripheral& peripheral, Intent intent, const std::string& name);
    void connectTimedOut(const UUID& peripheral, Intent intent, const std::string& name);
    void abandonAttempt();
    void pendingConnectFailed(const UUID& peripheral, const BluetoothError* error);
    void attemptFailed(const UUID& peripheral, const BluetoothError* error);
    void adoptConnection(const Peripheral& peripheral, Intent intent);
    void sessionDropped(const BluetoothError* error);
    [[nodiscard]] bool mayTurnOutToBe(const TrustedDevice& device) const;

    // handshake.cpp
    void handshakeTimedOut(const UUID& peripheral, const std::string& name);
    void deviceInfoArrived(ByteView value, const BluetoothError* error);
    void trust(const DeviceInfo& info);
    void completeConnection();

    // session.cpp
    void controlMessageArrived(ByteView value);
    void inputArrived(ByteView value);
    void remoteEnded(const std::string& message);
    void writeControl(ByteView message);
    void writeGoodbye();
    [[nodiscard]] bool canWriteControl() const;
    void endSession(bool cancel, const std::optional<std::string>& message);
    void failSession(const std::string& reason, std::optional<BLEAlert> shown, bool retry);

    // reconnect.cpp
    void scheduleRetry();
    void resetRetryState();
    void suppress(const std::optional<UUID>& peripheral, const std::optional<UUID>& device,
                  SuppressionReason reason);
    void suppressSession(SuppressionReason reason);
    void queuePendingConnect(const Peripheral& peripheral);
    void cancelPendingConnects();
    void dropPeripheral(const UUID& peripheral);
    void cutFarewell(const UUID& peripheral);
    void handlePairingFailure(const BluetoothError* error);
    void restartAfterSleep();

    TrustedDeviceStore& trustStore_;
    Ports ports_;
    bool autoConnectEnabled_ = true;

    /// Every peripheral seen since Bluetooth came up, by identifier.
    std::unordered_map<UUID, Peripheral> peripherals_;
    std::optional<Session> session_;
    std::optional<ConnectionAttempt> attempt_;
    /// Background connect requests to trusted iPhones.
    std::set<UUID> pendingConnects_;
    /// Peripherals whose disconnection this side asked for, until it is reported.
    std::set<UUID> intentionalDisconnects_;
    /// Forgotten by the user since the last connect was asked for: that one does not make them trusted again.
    std::set<UUID> forgotten_;
    /// The trusted iPhone that the user has asked for during a session with another, while it is scanned for.
    std::optional<UUID> lookedFor_;
    SuppressionBook suppressions_;
    ReconnectBackoff backoff_;

    // Destroying or re-arming a timer is how its job is called off.
    Timer watchdog_;  ///< of the attempt, then of the handshake
    Timer retryTimer_;
    Timer pruneTimer_;
    Timer scanStopTimer_;
    Timer wakeTimer_;
    std::map<UUID, Timer> goodbyeTimers_;  ///< connections to be cancelled once the goodbye has left
    Subscription wakeObserver_;
    Lifetime lifetime_;
};

}  // namespace orbinex
