#pragma once

#include <QDBusConnection>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fake_bluez.h"
#include "link/bluetooth_central.h"
#include "link/bluez/bluez_central.h"
#include "link/pairing_prompt.h"
#include "link/wake_notifier.h"
#include "sim/memory_defaults.h"
#include "sim/virtual_main_queue.h"

namespace orbinex::test {

using Lines = std::vector<std::string>;

/// What a central tells, a line each.
class RecordingDelegate final : public BluetoothCentral::Delegate {
  public:
    Lines lines;
    UUID phone;  ///< the last one that was discovered

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

  private:
    void note(const std::string& what, const BluetoothError* error);
};

/// A user who is asked whether to pair.
class ScriptedPrompt final : public PairingPrompt {
  public:
    std::optional<bool> answers = true;  ///< nothing: never
    Lines asked;
    int withdrawn = 0;

    void ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) override {
        asked.push_back(name + " " + digits.value_or("-"));
        if (answers) answer(*answers);
    }
    void withdraw() override { ++withdrawn; }
};

/// A central and the bluetoothd that it talks to, on a private bus, in virtual time. At its end nothing of
/// the central may be left in bluetoothd.
class BluezWorld {
  public:
    enum class Begins { withoutDaemon, withoutAdapter, poweredOn };

    explicit BluezWorld(Begins how = Begins::poweredOn);
    ~BluezWorld();

    /// Until nothing is on its way any more, at the present moment.
    void settle();
    void run(std::chrono::nanoseconds span);
    /// What the central has told since the last time, once everything has settled.
    Lines take();
    /// The program quits and is started again.
    void restart();
    void quit();

    /// Scans until the phone is discovered.
    void discover();
    /// The whole way to the characteristics.
    void connect(Initiative initiative = Initiative::user);
    void discoverCharacteristics();
    /// Also pairs and subscribes.
    void establish();

    VirtualMainQueue queue;
    MemoryDefaults defaults;
    ScriptedPrompt prompt;
    WakeNotifier wake;
    FakeBluez bluez;
    FakePhone& phone;
    RecordingDelegate seen;
    std::unique_ptr<BluezCentral> central;

    [[nodiscard]] QDBusConnection connection() const { return *connection_; }
    [[nodiscard]] const UUID& id() const { return seen.phone; }
    /// Under the name that the user knows.
    [[nodiscard]] Peripheral iPhone() const { return {id(), "Studio iPhone"}; }

  private:
    void start();
    void pump();

    QString connectionName_;
    std::optional<QDBusConnection> connection_;
};

/// The address of the bus that the whole program shares.
QString busAddress();
int openDescriptors();

}  // namespace orbinex::test
