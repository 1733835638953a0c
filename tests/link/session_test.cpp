// The handshake's order, the traffic of a session, and its ends.

#include <gtest/gtest.h>

#include "link_world.h"
#include "protocol/gatt.h"
#include "support/publish_in_test.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

const DecodedPacket move{DecodedPacket::MouseMove{1, -2}};

TEST(Session, greetsThePhoneAndTellsItTheEditorsState) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    ASSERT_EQ(*world.link.phase, LinkPhase::connected);
    const std::vector<ControlMessage> expected{
        ControlMessage{ControlMessage::Hello{2, "Edit Suite"}},
        ControlMessage{ControlMessage::ActiveApp{"org.example.editor"}},
        ControlMessage{*world.bridge.currentTelemetry},
    };
    EXPECT_EQ(phone.received, expected);
    EXPECT_TRUE(world.bridge.isConnected);
    EXPECT_FALSE(*world.link.isScanning);
    EXPECT_EQ(*world.link.activeDevice,
              (ActiveDevice{phone.identifier(), phone.info.deviceID, "Studio iPhone"}));
}

TEST(Session, writesWithResponseToAPhoneThatTakesNothingElse) {
    LinkWorld world;
    world.computerName.clear();
    PublishInTest::set(world.bridge.activeBundleID, {});
    auto& phone = world.addPhone();
    phone.canWriteWithoutResponse = false;
    world.establish(phone);
    ASSERT_EQ(phone.received.size(), 2u) << "an empty application is not sent";
    EXPECT_EQ(phone.received[0], ControlMessage{(ControlMessage::Hello{2, "Mac"})});
}

TEST(Session, passesTheBridgesOutputOnOnlyWhileAPhoneListens) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.bridge.onActiveAppChanged("early");
    world.establish(phone);
    phone.received.clear();
    world.bridge.onActiveAppChanged("org.example.other");
    world.bridge.onTelemetryChanged(*world.bridge.currentTelemetry);
    world.bridge.onDAWPacketReady(encodeGoodbye());
    EXPECT_EQ(phone.received, (std::vector{ControlMessage{ControlMessage::ActiveApp{"org.example.other"}},
                                           ControlMessage{*world.bridge.currentTelemetry},
                                           ControlMessage{ControlMessage::Goodbye{}}}));
    phone.received.clear();
    phone.dropLink();
    world.run(0s);
    world.bridge.onActiveAppChanged("late");
    EXPECT_TRUE(phone.received.empty());
    EXPECT_FALSE(world.bridge.isConnected);
}

TEST(Session, takesInputOnlyOnceItIsComplete) {
    LinkWorld world;
    auto& phone = world.addPhone();
    phone.subscribeStep.delay = 300ms;
    world.connectByUser(phone);
    world.run(200ms);
    ASSERT_EQ(*world.link.phase, LinkPhase::securing);
    phone.send(move);
    world.run(10s);
    EXPECT_TRUE(world.packets.empty());

    phone.send(move);
    phone.notify(OrbinexProtocol::keyboardCharacteristicUUID, move.encode());
    phone.notify(OrbinexProtocol::mouseCharacteristicUUID, Bytes{0x07});
    phone.notify(OrbinexProtocol::mouseCharacteristicUUID, Bytes{});
    world.run(0s);
    EXPECT_EQ(world.packets, (std::vector{move, move}))
        << "either characteristic; what does not decode is dropped";
}

TEST(Session, handsCommandsToTheBridgeAndIgnoresTheRest) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    phone.send(DAWCommand{DAWCommand::SelectTrack{3}});
    phone.send(ControlMessage{ControlMessage::Goodbye{}});
    phone.notify(OrbinexProtocol::controlCharacteristicUUID, Bytes{0x99, 1, 2});
    world.run(0s);
    EXPECT_EQ(world.bridge.commands, std::vector{DAWCommand{DAWCommand::SelectTrack{3}}});
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
}

TEST(Session, cannotChangeThePhonesIdentityOnceItIsKnown) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    phone.info.deviceID = LinkWorld::otherDeviceID;
    world.radio.readValue(phone.identifier(), OrbinexProtocol::infoCharacteristicUUID);
    world.run(1s);
    EXPECT_EQ(world.store.devices->size(), 1u);
    EXPECT_EQ(world.link.activeDevice.get()->deviceID, LinkWorld::deviceID);
}

TEST(Session, refreshesTheTrustedRecordAndKeepsItsFirstDate) {
    LinkWorld world;
    auto& phone = world.addPhone();
    auto record = world.trustEarlier(phone);
    world.run(100s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    phone.dropLink();
    phone.info.name = "Renamed";
    world.run(10s);
    const auto& stored = world.store.devices->front();
    EXPECT_EQ(stored.dateAdded, record.dateAdded);
    EXPECT_EQ(stored.name, "Renamed");
    EXPECT_GT(stored.lastConnected, record.dateAdded);
    EXPECT_EQ(stored.token, "A1B2C3");
}

TEST(Session, tellsOfALostConnectionHoweverItEnds) {
    const struct {
        const char* how;
        std::function<void(LinkWorld&, SimulatedPhone&)> end;
    } rows[] = {
        {"dropped", [](LinkWorld&, SimulatedPhone& phone) { phone.dropLink(); }},
        {"out of range", [](LinkWorld&, SimulatedPhone& phone) { phone.setInRange(false); }},
        {"user disconnects", [](LinkWorld& world, SimulatedPhone&) { world.link.disconnect(); }},
        {"user forgets",
         [](LinkWorld& world, SimulatedPhone&) { world.link.forgetDevice(world.store.devices->front()); }},
        {"power lost",
         [](LinkWorld& world, SimulatedPhone&) { world.radio.setState(BluetoothState::poweredOff); }},
        {"phone asks",
         [](LinkWorld&, SimulatedPhone& phone) {
             phone.send(ControlMessage{ControlMessage::DisconnectRequest{}});
         }},
        {"service withdrawn", [](LinkWorld&, SimulatedPhone& phone) { phone.withdrawService(); }},
        {"another phone chosen",
         [](LinkWorld& world, SimulatedPhone&) {
             world.link.connectPeripheral({LinkWorld::otherAddress, ""}, "Other");
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.how);
        LinkWorld world;
        auto& phone = world.addPhone();
        world.establish(phone);
        row.end(world, phone);
        world.run(0s);
        EXPECT_EQ(world.connectionsLost, 1);
        EXPECT_FALSE(world.link.session());
        EXPECT_FALSE(world.bridge.isConnected);
    }
}

TEST(Session, endsWithTheLinkObject) {
    int lost = 0;
    {
        LinkWorld world;
        auto& phone = world.addPhone();
        world.establish(phone);
        world.link.onConnectionLost = [&] { ++lost; };
    }
    EXPECT_EQ(lost, 1);
}

TEST(Session, dropsAConnectionThatNobodyAskedFor) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.run(1500ms);
    world.radio.connect({phone.identifier(), {}}, Initiative::user);
    world.run(1s);
    EXPECT_EQ(world.radio.connectedCount(), 0u);
    EXPECT_FALSE(world.link.session());
}

TEST(Session, isLeftAloneByClicksThatComeLate) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    world.link.cancelConnectionAttempt();
    world.link.connectNearbyDevice(phone.identifier());
    world.link.connectNearbyDevice(UUID::random());
    world.link.connectTrustedDevice(world.store.devices->front());
    world.run(60s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    phone.send(move);
    world.run(0s);
    EXPECT_EQ(world.packets.size(), 1u);

    world.link.disconnect();
    world.link.disconnect();
    EXPECT_EQ(*world.link.statusMessage, "Disconnected from Studio iPhone");
}

TEST(Forgetting, whileConnectingDoesNotTrustThePhoneAgain) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.link.setAutoConnectEnabled(false);
    const auto record = world.trustEarlier(phone);
    phone.connectStep.delay = 5s;
    world.run(2s);
    world.link.connectTrustedDevice(record);
    world.run(1s);
    ASSERT_TRUE(world.link.isActive(record));
    world.link.forgetDevice(record);
    world.run(60s);
    EXPECT_TRUE(world.store.devices->empty());
    EXPECT_EQ(*world.link.phase, LinkPhase::searching);
}

TEST(Forgetting, makesThePhoneAStrangerThatCanBeTrustedAgain) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    world.link.forgetDevice(world.store.devices->front());
    EXPECT_TRUE(world.store.devices->empty());
    world.run(10s);
    EXPECT_EQ(*world.link.phase, LinkPhase::searching) << "not by itself";
    EXPECT_EQ(world.link.untrustedNearbyDevices().size(), 1u);
    world.link.connectNearbyDevice(phone.identifier());
    world.run(1s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    EXPECT_EQ(world.store.devices->size(), 1u);
}

TEST(Session, subscribesToNothingThatThePhoneHasNotOffered) {
    LinkWorld world;
    auto& phone = world.addPhone();
    phone.servicesStep.isAnswered = false;
    world.connectByUser(phone);
    world.run(500ms);
    phone.tell(OrbinexProtocol::infoCharacteristicUUID, phone.info.encode());
    world.run(1s);
    EXPECT_FALSE(phone.isNotifying(OrbinexProtocol::mouseCharacteristicUUID));
    EXPECT_EQ(*world.link.phase, LinkPhase::securing);
}

}  // namespace
}  // namespace orbinex
