#pragma once

#include <QDBusConnection>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/signal.h"
#include "base/user_defaults.h"
#include "link/bluetooth_central.h"
#include "link/bluez/bluez_adapter_choice.h"
#include "link/bluez/bluez_bus.h"
#include "link/bluez/bluez_connections.h"
#include "link/bluez/bluez_devices.h"
#include "link/bluez/bluez_discovery.h"
#include "link/bluez/bluez_gatt.h"
#include "link/bluez/bluez_objects.h"
#include "link/bluez/bluez_pairing.h"
#include "link/bluez/bluez_sightings.h"
#include "link/pairing_prompt.h"
#include "link/wake_notifier.h"

namespace orbinex {

/// The Bluetooth central on bluetoothd, BlueZ 5.66 or newer. This class follows bluetoothd, the adapter and
/// what is heard; BluezConnections connects, BluezGatt talks to what is connected, BluezPairing pairs.
///
/// Whether bluetoothd runs, hangs, restarts or comes later is a matter of the state that is reported.
class BluezCentral final : public BluetoothCentral {
  public:
    /// All of it must outlive the central.
    struct Ports {
        MainQueue& queue;
        UserDefaults& defaults;
        PairingPrompt& prompt;
        WakeNotifier& wake;
        /// The one adapter to use, such as "hci0"; empty is the first that is usable.
        QString adapter = {};
    };
    /// bluetoothd, or its adapter, may be this late or gone for so long without being given up.
    static constexpr std::chrono::seconds patience{5};
    /// Before bluetoothd is asked again when it did not answer, or does not let this program in.
    static constexpr std::chrono::seconds retryInterval{5};

    /// On the system bus, or wherever bluetoothd is.
    BluezCentral(const QDBusConnection& connection, Ports ports);
    ~BluezCentral() override;

    void start(Delegate& delegate) override;
    void stop() override;
    [[nodiscard]] bool isScanning() const override { return scannedService_.has_value(); }
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
    [[nodiscard]] bool isPoweredOn() const { return state_ == BluetoothState::poweredOn; }

    // bluetoothd and its adapters
    void ownerChanged();
    void askForObjects();
    void objectsTold(const BluezBus::Reply& reply);
    void askWhetherConnected(const UUID& device, const std::function<void()>& done);
    void setDaemon(BluezDaemon daemon);
    void reviewState();
    [[nodiscard]] BluetoothState presentState(const BluezAdapter* adapter);
    void enterState(BluetoothState state, const QString& adapter);
    void forgetEverything();

    // its objects
    void objectAdded(const QString& path, const BluezInterfaces& interfaces);
    void objectRemoved(const QString& path, const QStringList& interfaces);
    void objectChanged(const QString& path, const QString& interface, const QVariantMap& changed,
                       const QStringList& invalidated);
    void bonded(const UUID& device);
    void reviewDevice(const UUID& device);
    void heard(const UUID& device);

    MainQueue& queue_;
    const QString onlyAdapter_;
    Delegate* delegate_ = nullptr;
    BluezBus bus_;
    BluezObjects objects_;
    BluezSightings sightings_;
    BluezDevices devices_;
    BluezDiscovery discovery_;
    BluezConnections connections_;
    BluezPairing pairing_;
    BluezGatt gatt_;

    BluezDaemon daemon_ = BluezDaemon::unasked;
    QString adapter_;
    BluetoothState state_ = BluetoothState::unknown;
    std::optional<UUID> scannedService_;
    /// Runs while something is missing; over, it is taken for missing.
    Timer patience_;
    bool isOutOfPatience_ = false;
    Timer retry_;
    Subscription wake_;
    Lifetime lifetime_;
};

}  // namespace orbinex
