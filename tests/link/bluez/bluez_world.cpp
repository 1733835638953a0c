#include "bluez_world.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDir>
#include <QEventLoop>
#include <array>

#include <gtest/gtest.h>

#include "private_bus.h"
#include "protocol/gatt.h"

namespace orbinex::test {

namespace {

std::string nameOf(const UUID& uuid) {
    using namespace OrbinexProtocol;
    if (uuid == mouseCharacteristicUUID) return "mouse";
    if (uuid == keyboardCharacteristicUUID) return "keyboard";
    if (uuid == infoCharacteristicUUID) return "info";
    return uuid == controlCharacteristicUUID ? "control" : uuid.text();
}

}  // namespace

QString busAddress() {
    static int argc = 1;
    static char name[] = "test";
    static std::array<char*, 2> argv{name, nullptr};
    static const QCoreApplication application(argc, argv.data());
    static const PrivateBus bus;
    return bus.address();
}

int openDescriptors() {
    return static_cast<int>(QDir("/proc/self/fd").entryList(QDir::Files | QDir::System).size());
}

// RecordingDelegate

void RecordingDelegate::note(const std::string& what, const BluetoothError* error) {
    if (!error) return lines.push_back(what);
    using Kind = BluetoothError::Kind;
    const auto code = std::to_string(error->code);
    lines.push_back(what + ": " +
                    (error->kind == Kind::attribute   ? "attribute " + code
                     : error->kind == Kind::framework ? "framework " + code
                                                      : error->description));
}

void RecordingDelegate::bluetoothStateUpdated(BluetoothState state) {
    static constexpr std::array names{"unknown",      "resetting",  "unsupported",
                                      "unauthorized", "poweredOff", "poweredOn"};
    lines.push_back(names.at(static_cast<std::size_t>(state)));
}
void RecordingDelegate::peripheralDiscovered(const Advertisement& advertisement) {
    phone = advertisement.peripheral.identifier;
    lines.push_back("discovered " + advertisement.localName.value_or("-"));
}
void RecordingDelegate::peripheralConnected(const Peripheral&) {
    lines.emplace_back("connected");
}
void RecordingDelegate::peripheralFailedToConnect(const Peripheral&, const BluetoothError* error) {
    note("failed", error);
}
void RecordingDelegate::peripheralDisconnected(const Peripheral&, const BluetoothError* error) {
    note("disconnected", error);
}
void RecordingDelegate::servicesDiscovered(const Peripheral&, std::span<const UUID> services,
                                           const BluetoothError* error) {
    note(std::to_string(services.size()) + " services", error);
}
void RecordingDelegate::characteristicsDiscovered(const Peripheral&, const UUID&,
                                                  std::span<const Characteristic> characteristics,
                                                  const BluetoothError* error) {
    note(std::to_string(characteristics.size()) + " characteristics", error);
}
void RecordingDelegate::valueUpdated(const Peripheral&, const UUID& characteristic, ByteView value,
                                     const BluetoothError* error) {
    note(nameOf(characteristic) + "=" + std::string(value.begin(), value.end()), error);
}
void RecordingDelegate::notificationStateUpdated(const Peripheral&, const UUID& characteristic,
                                                 bool isNotifying, const BluetoothError* error) {
    note(nameOf(characteristic) + (isNotifying ? " on" : " off"), error);
}
void RecordingDelegate::servicesInvalidated(const Peripheral&, std::span<const UUID> services) {
    lines.push_back("invalidated " + std::to_string(services.size()));
}

// BluezWorld

BluezWorld::BluezWorld(Begins how)
    : bluez(busAddress(), queue), phone(bluez.addPhone("5A:00:00:00:00:01", "OXA1B2C3:Studio iPhone")) {
    if (how != Begins::withoutDaemon) bluez.rise();
    if (how == Begins::poweredOn) bluez.addAdapter(FakeBluez::hci0, true);
    start();
    if (how != Begins::poweredOn) return;
    EXPECT_EQ(take(), (Lines{"unknown", "poweredOn"}));
}

BluezWorld::~BluezWorld() {
    bluez.scripts.clear();
    quit();
    if (!bluez.isUp()) return;
    EXPECT_FALSE(bluez.isDiscovering());
    EXPECT_FALSE(bluez.isAgentRegistered());
    for (const auto& each : bluez.phones) EXPECT_FALSE(bluez.isConnected(each));
    for (const auto& [path, interfaces] : bluez.objects) {
        EXPECT_FALSE(interfaces["org.bluez.GattCharacteristic1"]["Notifying"].toBool());
    }
}

void BluezWorld::start() {
    static int number = 0;
    connectionName_ = QString("central-%1").arg(++number);
    connection_ = QDBusConnection::connectToBus(busAddress(), connectionName_);
    central =
        std::make_unique<BluezCentral>(*connection_, BluezCentral::Ports{queue, defaults, prompt, wake});
    central->start(seen);
}

void BluezWorld::quit() {
    if (!connection_) return;
    central.reset();
    settle();
    connection_.reset();
    QDBusConnection::disconnectFromBus(connectionName_);
}

void BluezWorld::restart() {
    quit();
    start();
}

/// What either side has sent before this has been delivered after it.
void BluezWorld::pump() {
    std::vector<std::unique_ptr<QDBusPendingCallWatcher>> answers;
    int expected = 0;
    const auto ping = [&](const QDBusConnection& from, const QDBusConnection& to) {
        const auto message =
            QDBusMessage::createMethodCall(to.baseService(), "/nothing", "org.freedesktop.DBus.Peer", "Ping");
        answers.push_back(std::make_unique<QDBusPendingCallWatcher>(from.asyncCall(message)));
        // That it is finished is known before this thread has been handed what came earlier; the signal
        // comes in its turn.
        QObject::connect(answers.back().get(), &QDBusPendingCallWatcher::finished, [&] { --expected; });
        ++expected;
    };
    const auto bus = QDBusConnection::connectToBus(busAddress(), "pump");
    ping(*connection_, bus);
    if (bluez.isUp()) {
        ping(bluez.connection(), *connection_);
        ping(*connection_, bluez.connection());
    }
    ping(bus, *connection_);
    while (expected > 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    queue.runDue();
}

void BluezWorld::settle() {
    std::size_t before = 0;
    int quietTurns = 0;
    queue.runDue();
    // In one turn an answer may be on its way to the central and its next call still to come.
    while (quietTurns < 2) {
        pump();
        const auto now = bluez.calls.size() + bluez.sent + seen.lines.size() + prompt.asked.size();
        quietTurns = now == before ? quietTurns + 1 : 0;
        before = now;
    }
}

void BluezWorld::run(std::chrono::nanoseconds span) {
    bool isOver = false;
    const Timer end = queue.after(span, [&] { isOver = true; });
    settle();
    while (!isOver) {
        queue.advanceToNext();
        settle();
    }
}

Lines BluezWorld::take() {
    settle();
    return std::exchange(seen.lines, {});
}

void BluezWorld::discover() {
    central->startScan(OrbinexProtocol::serviceUUID);
    settle();
    central->stopScan();
    settle();
    seen.lines.clear();
}

void BluezWorld::connect(Initiative initiative) {
    discover();
    central->connect(iPhone(), initiative);
    settle();
    discoverCharacteristics();
}

void BluezWorld::discoverCharacteristics() {
    central->discoverServices(id(), std::array{OrbinexProtocol::serviceUUID});
    settle();
    central->discoverCharacteristics(id(), OrbinexProtocol::serviceUUID, phone.characteristics);
    settle();
}

void BluezWorld::establish() {
    connect();
    central->readValue(id(), OrbinexProtocol::infoCharacteristicUUID);
    settle();
    central->setNotify(id(), OrbinexProtocol::mouseCharacteristicUUID, true);
    settle();
    EXPECT_EQ(take(), (Lines{"connected", "1 services", "4 characteristics", "info=info", "mouse on"}));
}

}  // namespace orbinex::test
