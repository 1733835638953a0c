// What is heard, how often it is told, and by which identifier and name.

#include <algorithm>

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace OrbinexProtocol;

const std::string sighting = "discovered OXA1B2C3:Studio iPhone";

TEST(BluezScan, reportsAPhoneOftenEnoughAndNotTooOften) {
    BluezWorld world;
    world.central->startScan(serviceUUID);
    world.run(20s);
    const auto quiet = std::ranges::count(world.take(), sighting);
    EXPECT_GE(quiet, 4) << "though bluetoothd tells nothing new of it";
    for (int i = 0; i < 100; ++i) {
        world.bluez.advertise(world.phone);
        world.run(10ms);
    }
    const auto busy = std::ranges::count(world.take(), sighting);
    EXPECT_GE(busy, 3);
    EXPECT_LE(busy, 5);
    world.central->stopScan();
    world.take();
    world.run(20s);
    EXPECT_EQ(world.take(), Lines{});
    EXPECT_FALSE(world.bluez.isDiscovering());
}

TEST(BluezScan, passesOverDevicesWithoutTheService) {
    BluezWorld world;
    auto& other = world.bluez.addPhone("00:00:00:00:00:02", "Headphones");
    world.phone.isInRange = false;
    world.central->startScan(serviceUUID);
    world.settle();
    world.bluez.advertise(other);
    world.bluez.change(other.path, Bluez::device,
                       {{"UUIDs", QStringList{"0000180f-0000-1000-8000-00805f9b34fb"}}});
    world.take();
    world.run(12s);
    EXPECT_EQ(world.take(), Lines{});
}

TEST(BluezScan, startsAgainWheneverBluetoothdFailsOrStopsIt) {
    const struct {
        const char* what;
        std::function<void(FakeBluez&)> harm;
    } rows[] = {
        {"hangs", [](FakeBluez& bluez) { bluez.hang("StartDiscovery"); }},
        {"filter hangs", [](FakeBluez& bluez) { bluez.hang("SetDiscoveryFilter"); }},
        {"fails", [](FakeBluez& bluez) { bluez.refuse("StartDiscovery", "org.bluez.Error.Failed", "busy"); }},
        {"not ready",
         [](FakeBluez& bluez) {
             bluez.refuse("StartDiscovery", "org.bluez.Error.NotReady", "Resource Not Ready");
         }},
        {"stop hangs", [](FakeBluez& bluez) { bluez.hang("StopDiscovery"); }},
        {"stop fails",
         [](FakeBluez& bluez) { bluez.refuse("StopDiscovery", "org.bluez.Error.Failed", "?"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        BluezWorld world;
        row.harm(world.bluez);
        world.central->startScan(serviceUUID);
        world.run(30s);
        EXPECT_LE(world.bluez.calls.size(), 60U) << "in peace";
        world.bluez.scripts.clear();
        world.take();
        world.run(25s);
        EXPECT_GE(std::ranges::count(world.take(), sighting), 1);
        EXPECT_TRUE(world.central->isScanning());
    }
}

TEST(BluezScan, isOffInTheEndInWhateverOrderItWasAskedFor) {
    BluezWorld world;
    world.bluez.hang("StartDiscovery");
    world.central->startScan(serviceUUID);
    world.settle();
    world.central->stopScan();
    world.central->startScan(serviceUUID);
    world.central->stopScan();
    world.settle();
    world.bluez.scripts.clear();
    world.bluez.act(world.bluez.kept.at(0));
    world.settle();
    EXPECT_FALSE(world.bluez.isDiscovering());

    world.bluez.hang("StartDiscovery");
    world.central->startScan(serviceUUID);
    world.settle();
    world.quit();
    world.bluez.scripts.clear();
    EXPECT_EQ(world.bluez.calls.back().member(), "StopDiscovery");
}

TEST(BluezScan, keepsTheAdvertisedNameApart) {
    BluezWorld world;
    world.establish();
    world.bluez.drop(world.phone);
    world.take();
    world.run(1s);
    // Heard again before its name is told anew.
    world.bluez.scripts["StartDiscovery"] = [&](const QDBusMessage& call) { world.bluez.answer(call); };
    world.central->startScan(serviceUUID);
    world.settle();
    world.bluez.change(world.phone.path, Bluez::device, {{"RSSI", QVariant::fromValue<short>(-50)}});
    EXPECT_EQ(world.take(), Lines{sighting});
    world.phone.name = "OXA1B2C3:Renamed";
    world.bluez.scripts.clear();
    world.run(6s);
    EXPECT_EQ(world.take(), Lines{"discovered OXA1B2C3:Renamed"});
}

/// A phone's private address changes every few minutes, and bonding tells its lasting one.
TEST(BluezScan, knowsABondedPhoneAgainWhateverItsAddress) {
    BluezWorld world;
    world.establish();
    const UUID met = world.id();
    const auto expectItAgain = [&](const char* when) {
        SCOPED_TRACE(when);
        world.run(1s);
        world.take();
        world.central->startScan(serviceUUID);
        EXPECT_EQ(world.take(), Lines{sighting});
        EXPECT_EQ(world.id(), met);
        EXPECT_EQ(world.central->retrievePeripherals(std::array{met}).size(), 1U);
        world.central->stopScan();
    };
    world.bluez.drop(world.phone);
    expectItAgain("in the same run");
    world.restart();
    expectItAgain("in the next run of the program");

    world.bluez.vanish();
    world.settle();
    world.bluez.objects.erase(world.phone.path);
    world.phone.path = QString(FakeBluez::hci0) + "/dev_" + QString(world.phone.identity).replace(':', '_');
    world.phone.service.clear();
    world.bluez.rise();
    expectItAgain("after bluetoothd has started anew, at another path");
    world.restart();
    expectItAgain("after both");
    world.central->connect({met, {}}, Initiative::program);
    world.settle();
    world.discoverCharacteristics();
    EXPECT_EQ(world.take(), (Lines{"connected", "1 services", "4 characteristics"}));
}

TEST(BluezScan, takesAPhoneWithAnotherAddressForAnotherUntilItIsBonded) {
    BluezWorld world;
    world.discover();
    const UUID met = world.id();
    world.bluez.remove(world.phone.path);
    world.phone.path.clear();
    world.phone.address = "5A:00:00:00:00:99";
    world.discover();
    EXPECT_NE(world.id(), met);
    EXPECT_TRUE(world.central->retrievePeripherals(std::array{met}).empty());
    // Bonded from here, it is the one that was connected.
    const UUID second = world.id();
    world.establish();
    EXPECT_EQ(world.id(), second);
}

}  // namespace
}  // namespace orbinex::test
