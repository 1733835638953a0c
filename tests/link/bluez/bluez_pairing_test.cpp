// Pairing at the user's wish, the agent's answers, and what is read of a phone that is not bonded: nothing.

#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "link/bluez/bluez_names.h"
#include "link/bluez/pairing_agent.h"
#include "protocol/gatt.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace OrbinexProtocol;

void readInfo(BluezWorld& world, Initiative initiative = Initiative::user) {
    world.connect(initiative);
    EXPECT_EQ(world.take(), (Lines{"connected", "1 services", "4 characteristics"}));
    world.central->readValue(world.id(), infoCharacteristicUUID);
    world.settle();
}

QVariant pathOf(const QString& path) {
    return QVariant::fromValue(QDBusObjectPath(path));
}

TEST(BluezPairing, endsAsTheUserAndThePhoneWish) {
    const Lines refused{"info=: attribute 5", "disconnected"};
    const struct {
        const char* what;
        std::function<void(BluezWorld&)> prepare;
        std::function<void(BluezWorld&)> then;
        Lines told;
        int withdrawn;
    } rows[] = {
        {"accepted", nullptr, nullptr, {"info=info"}, 0},
        {"accepted, and answered before the signals",
         [](BluezWorld& world) { world.bluez.answersFirst = true; },
         nullptr,
         {"info=info"},
         0},
        {"an agent of ours is registered already",
         [](BluezWorld& world) {
             world.bluez.scripts["RegisterAgent"] = [&](const QDBusMessage& call) {
                 world.bluez.act(call);
                 world.bluez.fail(call, "org.bluez.Error.AlreadyExists", "Already Exists");
             };
         },
         nullptr,
         {"info=info"},
         0},
        {"refused by the user", [](BluezWorld& world) { world.prompt.answers = false; }, nullptr, refused, 0},
        {"refused by the phone", [](BluezWorld& world) { world.phone.takesPairing = false; }, nullptr,
         refused, 0},
        {"paired, but the keys are not kept",
         [](BluezWorld& world) { world.phone.keepsBond = false; },
         nullptr,
         {"info=: attribute 5"},
         0},
        {"ignored by the user until bluetoothd gives up",
         [](BluezWorld& world) { world.prompt.answers.reset(); },
         [](BluezWorld& world) {
             world.run(30s);
             EXPECT_EQ(world.take(), Lines{});
             world.bluez.askAgent("Cancel", {}, [](bool) {});
             world.settle();
             for (const auto& call : world.bluez.calls) {
                 if (call.member() == "Pair") {
                     world.bluez.fail(call, "org.bluez.Error.AuthenticationFailed", "Authentication Failed");
                 }
             }
             world.bluez.drop(world.phone);
         },
         refused, 1},
        {"the link is lost meanwhile, and told before the answer",
         [](BluezWorld& world) { world.prompt.answers.reset(); },
         [](BluezWorld& world) {
             world.bluez.drop(world.phone);
             EXPECT_EQ(world.take(), Lines{}) << "why is still to be told";
             for (const auto& call : world.bluez.calls) {
                 if (call.member() == "Pair") {
                     world.bluez.fail(call, "org.bluez.Error.AuthenticationFailed", "Authentication Failed");
                 }
             }
         },
         refused, 1},
        {"cancelled by the link",
         [](BluezWorld& world) { world.prompt.answers.reset(); },
         [](BluezWorld& world) {
             world.central->cancelConnection(world.id());
             world.settle();
             EXPECT_EQ(world.bluez.count("CancelPairing"), 1);
         },
         {"disconnected"},
         1},
        {"Pair is never answered",
         [](BluezWorld& world) { world.bluez.hang("Pair"); },
         [](BluezWorld& world) { world.run(75s); },
         {"info=: framework 15"},
         0},
        {"RegisterAgent is never answered",
         [](BluezWorld& world) { world.bluez.hang("RegisterAgent"); },
         [](BluezWorld& world) { world.run(15s); },
         {"info=: The Bluetooth service of this computer does not answer."},
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        BluezWorld world;
        if (row.prepare) row.prepare(world);
        readInfo(world);
        if (row.then) row.then(world);
        EXPECT_EQ(world.take(), row.told);
        EXPECT_EQ(world.prompt.withdrawn, row.withdrawn);
        EXPECT_FALSE(world.bluez.isAgentRegistered());
        EXPECT_EQ(world.bluez.count("RequestDefaultAgent"), 0);
        EXPECT_EQ(world.bluez.count("ReadValue"), world.phone.isBonded ? 1 : 0);
        if (world.bluez.count("Pair") == 1 && world.prompt.asked.size() == 1) {
            EXPECT_EQ(world.prompt.asked.front(), "Studio iPhone 001234");
        }
    }
}

TEST(BluezPairing, happensOnlyAtTheUsersWish) {
    BluezWorld world;
    readInfo(world, Initiative::program);
    world.central->setNotify(world.id(), mouseCharacteristicUUID, true);
    EXPECT_EQ(world.take(), (Lines{"info=: attribute 5", "mouse off: attribute 5"}));
    world.bluez.notify(world.phone, mouseCharacteristicUUID, "input");
    EXPECT_EQ(world.take(), Lines{});
    for (const char* method : {"Pair", "RegisterAgent", "ReadValue", "AcquireNotify", "StartNotify"}) {
        EXPECT_EQ(world.bluez.count(method), 0) << method;
    }
}

TEST(BluezPairing, isNotAskedForOfABondedPhone) {
    BluezWorld world;
    world.establish();
    world.central->cancelConnection(world.id());
    world.run(10s);
    world.take();
    readInfo(world, Initiative::program);
    EXPECT_EQ(world.take(), Lines{"info=info"});
    EXPECT_EQ(world.bluez.count("Pair"), 1);
    EXPECT_EQ(world.prompt.asked.size(), 1U);
}

TEST(BluezPairing, answersForNoOtherDeviceAndToNobodyElse) {
    BluezWorld world;
    world.prompt.answers.reset();
    readInfo(world);
    ASSERT_EQ(world.prompt.asked.size(), 1U);
    const auto other = pathOf(QString(FakeBluez::hci0) + "/dev_00_00_00_00_00_02");
    const auto ours = pathOf(world.phone.path);
    const struct {
        const char* method;
        QVariantList arguments;
    } rows[] = {
        {"RequestConfirmation", {other, 1U}},
        {"RequestAuthorization", {other}},
        {"RequestConfirmation", {}},
        {"RequestConfirmation", {ours, "1234"}},
        {"RequestConfirmation", {world.phone.path, 1U}},
        {"RequestAuthorization", {}},
        {"RequestPinCode", {ours}},
        {"RequestPasskey", {ours}},
        {"AuthorizeService", {ours, "0000110b-0000-1000-8000-00805f9b34fb"}},
        {"Surprise", {}},
    };
    for (const auto& row : rows) {
        std::optional<bool> answer;
        world.bluez.askAgent(row.method, row.arguments, [&](bool isYes) { answer = isYes; });
        world.settle();
        EXPECT_EQ(answer, false) << row.method;
    }
    const auto stranger = QDBusConnection::connectToBus(busAddress(), "stranger");
    for (const char* method : {"RequestAuthorization", "Cancel"}) {
        auto call = QDBusMessage::createMethodCall(world.connection().baseService(), PairingAgent::path,
                                                   Bluez::agent, method);
        if (QString(method) != "Cancel") call.setArguments({ours});
        stranger.send(call);
    }
    world.settle();
    EXPECT_EQ(world.prompt.asked.size(), 1U);
    EXPECT_EQ(world.prompt.withdrawn, 0);
}

TEST(BluezPairing, takesBackABondThatAPhoneBringsAboutByItself) {
    for (const auto initiative : {Initiative::user, Initiative::program}) {
        BluezWorld world;
        world.connect(initiative);
        world.take();
        world.bluez.bond(world.phone);
        world.settle();
        EXPECT_EQ(world.bluez.count("RemoveDevice"), 1);
        world.central->readValue(world.id(), infoCharacteristicUUID);
        world.central->setNotify(world.id(), mouseCharacteristicUUID, true);
        world.settle();
        EXPECT_EQ(world.take(), (Lines{"info=: attribute 5", "mouse off: attribute 5"}));
        world.bluez.drop(world.phone);
        world.settle();
        EXPECT_EQ(world.take(), Lines{"disconnected: attribute 5"});
        for (const char* method : {"Pair", "ReadValue", "AcquireNotify", "StartNotify"}) {
            EXPECT_EQ(world.bluez.count(method), 0) << method;
        }
    }
}

TEST(BluezPairing, ofADeviceInTheDesktopsSettingsIsTheUsersAffair) {
    BluezWorld world;
    world.discover();
    world.bluez.bond(world.phone);
    world.settle();
    EXPECT_EQ(world.bluez.count("RemoveDevice"), 0);
    readInfo(world, Initiative::program);
    EXPECT_EQ(world.take(), Lines{"info=info"});
}

}  // namespace
}  // namespace orbinex::test
