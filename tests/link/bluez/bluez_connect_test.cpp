// Connect requests stay open, cancels are clean in every interleaving, and a phone is not hammered.

#include <array>

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace OrbinexProtocol;

TEST(BluezConnect, isToldOnceInWhateverOrderBluetoothdTellsIt) {
    for (const bool answersFirst : {false, true}) {
        BluezWorld world;
        world.bluez.answersFirst = answersFirst;
        world.establish();
        world.central->connect(world.iPhone(), Initiative::user);
        EXPECT_EQ(world.take(), Lines{"connected"}) << "again, as it was asked for again";
        world.central->cancelConnection(world.id());
        EXPECT_EQ(world.take(), Lines{"disconnected"});
        EXPECT_EQ(world.bluez.count("Connect"), 1);
        EXPECT_EQ(world.bluez.count("Disconnect"), 1);
        world.run(1min);
        EXPECT_EQ(world.take(), Lines{});
    }
}

TEST(BluezConnect, noticesAConnectionWhoseSignalNeverComes) {
    BluezWorld world;
    world.discover();
    world.bluez.scripts["Connect"] = [&](const QDBusMessage& call) {
        auto& device = world.bluez.objects[world.phone.path][Bluez::device];
        device["Connected"] = true;
        world.bluez.answer(call);
    };
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(1s);
    EXPECT_EQ(world.take(), Lines{"connected"});
}

TEST(BluezConnect, requestStaysOpenUntilThePhoneComes) {
    for (const auto initiative : {Initiative::user, Initiative::program}) {
        BluezWorld world;
        world.discover();
        world.phone.isInRange = false;
        world.central->connect(world.iPhone(), initiative);
        world.run(100s);
        EXPECT_EQ(world.take(), Lines{});
        EXPECT_LE(world.bluez.count("Connect"), 3);
        // Unseen, it is forgotten by bluetoothd.
        world.bluez.remove(world.phone.path);
        world.run(100s);
        EXPECT_EQ(world.take(), Lines{});
        world.phone.isInRange = true;
        world.central->startScan(serviceUUID);
        world.run(10s);
        const auto told = world.take();
        EXPECT_EQ(std::ranges::count(told, "connected"), 1);
        EXPECT_TRUE(world.central->isConnected(world.id()));
    }
}

TEST(BluezConnect, byItselfAsksOnlyForWhatWasHeardOfLate) {
    BluezWorld world;
    world.discover();
    world.run(13s);
    world.central->connect(world.iPhone(), Initiative::program);
    world.run(60s);
    EXPECT_EQ(world.bluez.count("Connect"), 0);
    world.central->startScan(serviceUUID);
    world.run(100ms);
    EXPECT_EQ(world.bluez.count("Connect"), 1);
}

TEST(BluezConnect, leavesAloneWhatAnotherProgramHasConnected) {
    BluezWorld world;
    world.discover();
    world.bluez.connectPhone(world.phone);
    world.run(10s);
    EXPECT_EQ(world.take(), Lines{});
    EXPECT_EQ(world.central->retrieveConnectedPeripherals(serviceUUID).size(), 1U);
    EXPECT_FALSE(world.central->isConnected(world.id()));
    world.quit();
    EXPECT_TRUE(world.bluez.isConnected(world.phone));
    world.bluez.drop(world.phone);
}

TEST(BluezConnect, tellsALinkOfClassicBluetoothFromOneOfLowEnergy) {
    for (const bool tellsBearers : {false, true}) {
        SCOPED_TRACE(tellsBearers);
        BluezWorld world;
        auto& phone = world.phone;
        phone.isAddressRandom = false;
        phone.isBonded = phone.isClassic = phone.hasClassicLink = true;
        phone.tellsBearers = tellsBearers;
        world.discover();
        EXPECT_TRUE(world.central->retrieveConnectedPeripherals(serviceUUID).empty())
            << "it only plays music";
        EXPECT_FALSE(world.central->isConnected(world.id()));
        world.connect();
        EXPECT_EQ(world.bluez.count("Connect"), 1);
        EXPECT_TRUE(world.central->isConnected(world.id()));
        world.take();
        world.bluez.drop(phone);
        EXPECT_EQ(world.take(), Lines{"disconnected"}) << "though it plays on";
        EXPECT_FALSE(world.central->isConnected(world.id()));
        world.connect();
        world.take();
        world.central->cancelConnection(world.id());
        world.run(1s);
        EXPECT_EQ(world.take(), Lines{"disconnected"});
        EXPECT_FALSE(phone.isLinked);
        EXPECT_EQ(phone.hasClassicLink, tellsBearers)
            << "one bearer can be ended alone where they are told apart";
    }
}

TEST(BluezConnect, waitsForServicesThatComeAfterThoseOfClassicBluetooth) {
    BluezWorld world;
    world.phone.isAddressRandom = false;
    world.phone.isBonded = world.phone.isClassic = world.phone.hasClassicLink = true;
    world.phone.hasService = false;
    world.discover();
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(1s);
    ASSERT_EQ(world.take(), Lines{"connected"});
    world.central->discoverServices(world.id(), std::array{serviceUUID});
    world.run(5s);
    EXPECT_EQ(world.take(), Lines{}) << "those that are resolved may be the other bearer's";
    world.bluez.offerService(world.phone, 0x15);
    world.settle();
    EXPECT_EQ(world.take(), Lines{"1 services"});
    world.bluez.withdrawService(world.phone);
    world.settle();
    world.take();
    world.central->discoverServices(world.id(), std::array{serviceUUID});
    world.run(20s);
    EXPECT_EQ(world.take(), Lines{"0 services"}) << "there is none";
}

TEST(BluezConnect, cancelIsCleanWheneverItComes) {
    const struct {
        const char* when;
        std::function<void(BluezWorld&)> act;
        Lines told;
    } rows[] = {
        {"at once",
         [](BluezWorld& world) {
             world.central->connect(world.iPhone(), Initiative::user);
             world.central->cancelConnection(world.id());
         },
         {"disconnected"}},
        {"before the phone is in range",
         [](BluezWorld& world) {
             world.phone.isInRange = false;
             world.central->connect(world.iPhone(), Initiative::user);
             world.run(1s);
             world.central->cancelConnection(world.id());
         },
         {"disconnected"}},
        {"after bluetoothd has given up",
         [](BluezWorld& world) {
             world.phone.isInRange = false;
             world.central->connect(world.iPhone(), Initiative::user);
             world.run(41500ms);
             world.central->cancelConnection(world.id());
         },
         {"disconnected"}},
        {"after the signal, before the answer",
         [](BluezWorld& world) {
             world.bluez.hang("Connect");
             world.central->connect(world.iPhone(), Initiative::user);
             world.settle();
             world.bluez.connectPhone(world.phone);
             world.settle();
             world.central->cancelConnection(world.id());
             world.settle();
             world.bluez.fail(world.bluez.kept.at(0), "org.bluez.Error.Failed", "br-connection-canceled");
         },
         {"connected", "disconnected"}},
        {"after the answer, before the signal",
         [](BluezWorld& world) {
             world.bluez.scripts["Connect"] = [&](const QDBusMessage& call) { world.bluez.answer(call); };
             world.bluez.hang("Get");
             world.central->connect(world.iPhone(), Initiative::user);
             world.settle();
             world.central->cancelConnection(world.id());
             world.settle();
             world.bluez.scripts.clear();
             world.bluez.connectPhone(world.phone);
             world.bluez.act(world.bluez.kept.at(0));
             world.run(6s);
         },
         {"disconnected"}},
        {"twice",
         [](BluezWorld& world) {
             world.central->connect(world.iPhone(), Initiative::user);
             world.settle();
             world.central->cancelConnection(world.id());
             world.central->cancelConnection(world.id());
             world.settle();
             world.central->cancelConnection(world.id());
         },
         {"connected", "disconnected"}},
        {"while Disconnect hangs",
         [](BluezWorld& world) {
             world.central->connect(world.iPhone(), Initiative::user);
             world.settle();
             world.bluez.hang("Disconnect");
             world.central->cancelConnection(world.id());
             world.run(20s);
             world.bluez.scripts.clear();
             world.run(20s);
         },
         {"connected", "disconnected"}},
        {"when the link has gone at that moment",
         [](BluezWorld& world) {
             world.central->connect(world.iPhone(), Initiative::user);
             world.settle();
             world.central->cancelConnection(world.id());
             world.bluez.drop(world.phone);
         },
         {"connected", "disconnected"}},
        {"when the object has gone",
         [](BluezWorld& world) {
             world.central->connect(world.iPhone(), Initiative::user);
             world.settle();
             world.bluez.remove(world.phone.path);
             world.settle();
             world.central->cancelConnection(world.id());
             world.phone.service.clear();
         },
         {"connected", "disconnected"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        BluezWorld world;
        world.discover();
        row.act(world);
        auto told = world.take();
        // Whether a cancel of nothing is told again is the platform's choice.
        if (std::ranges::count(told, "disconnected") == 2) told.pop_back();
        EXPECT_EQ(told, row.told);
        world.run(1min);
        EXPECT_FALSE(world.central->isConnected(world.id()));
        EXPECT_FALSE(world.bluez.isConnected(world.phone));
        world.phone.isInRange = true;
        world.bluez.scripts.clear();
        world.discover();
        world.central->connect(world.iPhone(), Initiative::user);
        EXPECT_EQ(world.take(), Lines{"connected"});
    }
}

TEST(BluezConnect, waitsAfterEndingALinkUnlessAPersonAsks) {
    const struct {
        Initiative initiative;
        int after2s;
        int after4s;
    } rows[] = {{Initiative::program, 0, 1}, {Initiative::user, 1, 1}};
    for (const auto& row : rows) {
        BluezWorld world;
        world.connect();
        world.central->cancelConnection(world.id());
        world.take();
        world.central->startScan(serviceUUID);
        world.bluez.calls.clear();
        world.central->connect(world.iPhone(), row.initiative);
        world.run(2s);
        EXPECT_EQ(world.bluez.count("Connect"), row.after2s);
        world.run(2s);
        EXPECT_EQ(world.bluez.count("Connect"), row.after4s);
    }
}

TEST(BluezConnect, aPersonsWishIsNotCutByACancelUnderWay) {
    BluezWorld world;
    world.connect();
    world.take();
    world.bluez.hang("Disconnect");
    world.central->cancelConnection(world.id());
    world.settle();
    world.central->connect(world.iPhone(), Initiative::user);
    world.settle();
    world.bluez.scripts.clear();
    world.bluez.act(world.bluez.kept.at(0));
    EXPECT_EQ(world.take(), (Lines{"disconnected", "connected"}));
    world.run(1min);
    EXPECT_EQ(world.take(), Lines{});
    EXPECT_TRUE(world.bluez.isConnected(world.phone));
}

TEST(BluezConnect, tellsAForgottenPairingFromAPhoneThatIsFarAway) {
    BluezWorld world;
    world.establish();
    world.bluez.drop(world.phone);
    world.phone.hasForgottenBond = true;
    world.take();
    world.bluez.calls.clear();
    world.discover();
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(1min);
    EXPECT_EQ(world.take(), Lines{"failed: framework 14"});
    EXPECT_EQ(world.bluez.count("Connect"), 3);
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(1s);
    EXPECT_EQ(world.take(), Lines{"failed: framework 14"}) << "at once, now that it is known";
    world.phone.hasForgottenBond = false;
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(1s);
    EXPECT_EQ(world.take(), Lines{"connected"});
}

TEST(BluezConnect, asksABondedPhoneAgainThatDropsTheLinkBeforeItTellsItsServices) {
    BluezWorld world;
    world.establish();
    world.bluez.drop(world.phone);
    world.discover();
    world.take();
    const auto linkOnly = [&](const QDBusMessage& call) {
        world.bluez.change(world.phone.path, Bluez::device, {{"Connected", true}});
        world.bluez.answer(call);
    };
    world.bluez.scripts["Connect"] = linkOnly;
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(4s);
    EXPECT_EQ(world.take(), Lines{});
    world.bluez.scripts.clear();
    world.bluez.drop(world.phone);
    world.run(2s);
    EXPECT_EQ(world.take(), Lines{"connected"}) << "once its services are told";
    world.central->cancelConnection(world.id());
    world.settle();
    world.take();
    world.bluez.scripts["Connect"] = linkOnly;
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(7s);
    EXPECT_EQ(world.take(), Lines{"connected"}) << "once it has lasted";
}

TEST(BluezConnect, tellsThatALinkHasEndedBeforeItsPhoneIsDiscoveredAgain) {
    BluezWorld world;
    world.connect();
    world.central->startScan(serviceUUID);
    world.run(1s);
    world.take();
    // bluetoothd puts what changes at a time into one signal.
    world.bluez.change(
        world.phone.path, Bluez::device,
        {{"Connected", false}, {"ServicesResolved", false}, {"RSSI", QVariant::fromValue<short>(-60)}});
    world.settle();
    EXPECT_EQ(world.take(), (Lines{"disconnected", "discovered " + world.phone.name.toStdString()}));
}

TEST(BluezConnect, failsForGoodOnlyOnWhatWillNotPass) {
    const struct {
        const char* name;
        const char* text;
        bool isFinal;
    } rows[] = {
        {"org.bluez.Error.Failed", "Operation already in progress", false},
        {"org.bluez.Error.Failed", "Input/output error", false},
        {"org.bluez.Error.NotReady", "Resource Not Ready", false},
        {"org.freedesktop.DBus.Error.NoReply", "", false},
        {"org.freedesktop.DBus.Error.UnknownObject", "", false},
        {"org.freedesktop.DBus.Error.AccessDenied", "Rejected", true},
        {"org.bluez.Error.NotAvailable", "profile-unavailable", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.text);
        BluezWorld world;
        world.discover();
        world.bluez.refuse("Connect", row.name, row.text);
        world.central->connect(world.iPhone(), Initiative::user);
        world.run(10s);
        EXPECT_EQ(world.take().size(), row.isFinal ? 1U : 0U);
        EXPECT_LE(world.bluez.count("Connect"), 11);
        world.bluez.scripts.clear();
        world.run(5s);
        EXPECT_EQ(world.take(), row.isFinal ? Lines{} : Lines{"connected"});
    }
}

TEST(BluezConnect, outlivesAConnectThatIsNeverAnswered) {
    BluezWorld world;
    world.discover();
    world.bluez.hang("Connect");
    world.central->connect(world.iPhone(), Initiative::user);
    world.run(50s);
    EXPECT_EQ(world.bluez.count("Connect"), 1);
    world.bluez.scripts.clear();
    world.run(30s);
    EXPECT_EQ(world.take(), Lines{"connected"});
}

TEST(BluezConnect, leaksNoDescriptor) {
    BluezWorld world;
    world.establish();
    world.central->setNotify(world.id(), controlCharacteristicUUID, true);
    world.take();
    const int before = openDescriptors();
    for (int i = 0; i < 100; ++i) {
        world.bluez.drop(world.phone);
        world.settle();
        world.central->connect(world.iPhone(), Initiative::user);
        world.settle();
        world.discoverCharacteristics();
        world.central->setNotify(world.id(), mouseCharacteristicUUID, true);
        world.central->setNotify(world.id(), controlCharacteristicUUID, true);
        // Some end before the sockets have come.
        if (i % 3 != 0) world.settle();
    }
    world.settle();
    EXPECT_EQ(world.bluez.sockets.size(), 2U);
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace orbinex::test
