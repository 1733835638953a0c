// bluetoothd and its adapters come, hang, refuse, go and change; the state that is told follows.

#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace OrbinexProtocol;
using Begins = BluezWorld::Begins;

TEST(BluezState, isUnsupportedOnlyAfterAWhile) {
    BluezWorld world(Begins::withoutDaemon);
    world.run(4900ms);
    EXPECT_EQ(world.take(), Lines{"unknown"});
    world.run(200ms);
    EXPECT_EQ(world.take(), Lines{"unsupported"});
    world.bluez.rise();
    world.run(1min);
    world.take();
    world.bluez.addAdapter(FakeBluez::hci0, false);
    EXPECT_EQ(world.take(), Lines{"poweredOff"});
    world.bluez.setPowered(FakeBluez::hci0, true);
    EXPECT_EQ(world.take(), Lines{"poweredOn"});
    world.bluez.remove(FakeBluez::hci0);
    EXPECT_EQ(world.take(), Lines{"resetting"});
    world.run(5s);
    EXPECT_EQ(world.take(), Lines{"unsupported"});
}

TEST(BluezState, saysWhenItIsNotLetInAndAsksAgain) {
    BluezWorld world(Begins::withoutDaemon);
    world.bluez.addAdapter(FakeBluez::hci0, true);
    world.bluez.refuse("GetManagedObjects", Bluez::accessDenied, "Rejected send message");
    world.bluez.rise();
    EXPECT_EQ(world.take().back(), "unauthorized");
    world.run(20s);
    EXPECT_LE(world.bluez.count("GetManagedObjects"), 5);
    world.bluez.scripts.clear();
    world.run(5s);
    EXPECT_EQ(world.take(), Lines{"poweredOn"});
}

TEST(BluezState, survivesABluetoothdThatHangsOrTalksNonsense) {
    BluezWorld world(Begins::withoutDaemon);
    world.bluez.addAdapter(FakeBluez::hci0, true);
    world.bluez.hang("GetManagedObjects");
    world.bluez.rise();
    world.run(9s);
    world.take();
    world.run(30s);
    EXPECT_EQ(world.take(), Lines{"resetting"});
    world.bluez.scripts["GetManagedObjects"] = [&](const QDBusMessage& call) {
        world.bluez.answer(call, {QStringList{"nonsense"}});
    };
    world.run(30s);
    world.bluez.scripts.clear();
    world.wake.didWake.emit();
    world.run(15s);
    EXPECT_EQ(world.take().back(), "poweredOn");
    world.establish();
}

TEST(BluezState, staysWithItsAdapterAndSwitchesOnlyWhenItMust) {
    BluezWorld world;
    const auto scannedOn = [&] {
        world.central->startScan(serviceUUID);
        world.settle();
        QString path;
        for (const auto& call : world.bluez.calls) {
            if (call.member() == "StartDiscovery") path = call.path();
        }
        world.central->stopScan();
        world.take();
        return path;
    };
    world.bluez.addAdapter("/org/bluez/hci1", true);
    EXPECT_EQ(scannedOn(), FakeBluez::hci0);
    world.bluez.setPowered(FakeBluez::hci0, false);
    EXPECT_EQ(world.take(), (Lines{"resetting", "poweredOn"}));
    EXPECT_EQ(scannedOn(), "/org/bluez/hci1");
    world.bluez.setPowered(FakeBluez::hci0, true);
    EXPECT_EQ(world.take(), Lines{});
    EXPECT_EQ(scannedOn(), "/org/bluez/hci1");
    world.bluez.remove("/org/bluez/hci1");
    EXPECT_EQ(world.take(), (Lines{"resetting", "poweredOn"}));
}

/// Whatever is under way ends with bluetoothd, or with the adapter, in one word; then all of it works anew.
TEST(BluezState, isToldOnceWhenEverythingGoesAndComes) {
    const struct {
        const char* name;
        std::function<void(BluezWorld&)> begin;
    } phases[] = {
        {"idle", [](BluezWorld&) {}},
        {"scanning", [](BluezWorld& world) { world.central->startScan(serviceUUID); }},
        {"starting to scan",
         [](BluezWorld& world) {
             world.bluez.hang("StartDiscovery");
             world.central->startScan(serviceUUID);
         }},
        {"connecting",
         [](BluezWorld& world) {
             world.discover();
             world.phone.isInRange = false;
             world.central->connect(world.iPhone(), Initiative::user);
         }},
        {"connected", [](BluezWorld& world) { world.connect(); }},
        {"pairing",
         [](BluezWorld& world) {
             world.connect();
             world.prompt.answers.reset();
             world.central->readValue(world.id(), infoCharacteristicUUID);
         }},
        {"reading",
         [](BluezWorld& world) {
             world.establish();
             world.bluez.hang("ReadValue");
             world.central->readValue(world.id(), infoCharacteristicUUID);
         }},
        {"subscribing",
         [](BluezWorld& world) {
             world.establish();
             world.bluez.hang("AcquireNotify");
             world.central->setNotify(world.id(), controlCharacteristicUUID, true);
         }},
        {"subscribed", [](BluezWorld& world) { world.establish(); }},
        {"cancelling",
         [](BluezWorld& world) {
             world.establish();
             world.bluez.hang("Disconnect");
             world.central->cancelConnection(world.id());
         }},
    };
    const struct {
        const char* name;
        std::function<void(FakeBluez&)> go;
        std::function<void(FakeBluez&)> come;
        Lines told;
    } ends[] = {
        {"bluetoothd",
         [](FakeBluez& bluez) { bluez.vanish(); },
         [](FakeBluez& bluez) { bluez.rise(); },
         {"resetting", "poweredOn"}},
        {"adapter",
         [](FakeBluez& bluez) { bluez.removeAdapter(FakeBluez::hci0); },
         [](FakeBluez& bluez) { bluez.addAdapter(FakeBluez::hci0, true); },
         {"resetting", "poweredOn"}},
        {"power",
         [](FakeBluez& bluez) { bluez.setPowered(FakeBluez::hci0, false); },
         [](FakeBluez& bluez) { bluez.setPowered(FakeBluez::hci0, true); },
         {"poweredOff", "poweredOn"}},
    };
    for (const auto& phase : phases) {
        for (const auto& end : ends) {
            SCOPED_TRACE(std::string(end.name) + " goes while " + phase.name);
            BluezWorld world;
            phase.begin(world);
            world.take();
            end.go(world.bluez);
            auto told = world.take();
            EXPECT_FALSE(world.central->isConnected(world.id()));
            EXPECT_EQ(world.prompt.withdrawn, phase.name == std::string("pairing") ? 1 : 0);
            // A restarted bluetoothd holds no connection of the one before.
            for (auto& [path, interfaces] : world.bluez.objects) {
                if (interfaces.contains(Bluez::device)) {
                    interfaces[Bluez::device]["Connected"] = interfaces[Bluez::device]["ServicesResolved"] =
                        false;
                }
            }
            world.bluez.scripts.clear();
            world.phone.isInRange = true;
            world.run(1s);
            end.come(world.bluez);
            const auto toldLater = world.take();
            told.insert(told.end(), toldLater.begin(), toldLater.end());
            std::erase(told, "disconnected");
            std::erase(told, "unknown");
            EXPECT_EQ(told, end.told);
            EXPECT_FALSE(world.central->isScanning());
            world.run(1s);
            world.prompt.answers = true;
            world.establish();
        }
    }
}

/// The signals of the time asleep are lost.
TEST(BluezState, believesNothingAfterWakingBeforeItHasAsked) {
    BluezWorld world;
    world.establish();
    auto& device = world.bluez.objects[world.phone.path][Bluez::device];
    device["Connected"] = device["ServicesResolved"] = false;
    world.wake.didWake.emit();
    EXPECT_EQ(world.take(), Lines{"disconnected"});

    world.bluez.objects[FakeBluez::hci0][Bluez::adapter]["Powered"] = false;
    world.wake.didWake.emit();
    EXPECT_EQ(world.take(), Lines{"poweredOff"});
}

TEST(BluezState, takesNoWordFromAnybodyElse) {
    BluezWorld world;
    const auto other = QDBusConnection::connectToBus(busAddress(), "somebody");
    auto message = QDBusMessage::createSignal(FakeBluez::hci0, Bluez::properties, "PropertiesChanged");
    message.setArguments({Bluez::adapter, QVariantMap{{"Powered", false}}, QStringList{}});
    other.send(message);
    message = QDBusMessage::createSignal("/", Bluez::objectManager, "InterfacesRemoved");
    message.setArguments(
        {QVariant::fromValue(QDBusObjectPath(FakeBluez::hci0)), QStringList{Bluez::adapter}});
    other.send(message);
    EXPECT_EQ(world.take(), Lines{});
}

TEST(BluezState, isNotShakenByPropertiesAndSignalsOfAnyShape) {
    BluezWorld world;
    const QString path = QString(FakeBluez::hci0) + "/dev_00";
    const auto adapter = QVariant::fromValue(QDBusObjectPath(FakeBluez::hci0));
    const QVariantMap properties[] = {
        {},
        {{"Adapter", 7}, {"Address", 7}, {"UUIDs", "text"}, {"RSSI", "loud"}, {"Connected", "yes"}},
        {{"Adapter", adapter}, {"Address", "00:11:22:33:44"}},
        {{"Adapter", adapter}, {"Address", QString(100'000, 'A')}, {"Name", QByteArray(5, '\0')}},
        {{"Adapter", adapter},
         {"Address", "00:11:22:33:44:55"},
         {"UUIDs", QStringList{"", "zz", QString(10'000, '-')}},
         {"RSSI", QVariant::fromValue<short>(-32768)},
         {"Name", QString(100'000, QChar(0xD800 - 1))}},
    };
    world.central->startScan(serviceUUID);
    world.settle();
    world.take();
    for (const auto& each : properties) {
        world.bluez.add(path,
                        {{Bluez::device, each}, {Bluez::gattService, each}, {Bluez::characteristic, each}});
        world.bluez.change(path, Bluez::device, each);
        world.bluez.remove(path);
    }
    world.bluez.signal(path, Bluez::properties, "PropertiesChanged", {QStringList{"not", "these"}});
    world.bluez.signal("/", Bluez::objectManager, "InterfacesAdded", {path});
    world.bluez.signal("/", Bluez::objectManager, "InterfacesRemoved", {1, 2, 3});
    world.bluez.signal("/", Bluez::objectManager, "InterfacesReplaced", {});
    world.bluez.change(FakeBluez::hci0, Bluez::adapter, {{"Discovering", "perhaps"}});
    EXPECT_EQ(world.take(), Lines{});
    world.central->stopScan();
    world.establish();
}

}  // namespace
}  // namespace orbinex::test
