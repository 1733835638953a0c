// When the link tries again by itself, when it does not, and every delay to the millisecond.

#include <gtest/gtest.h>

#include "link_world.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

TEST(Delays, betweenAutomaticAttemptsDoubleUpToThirtySeconds) {
    LinkWorld world(BluetoothState::unknown);
    auto& phone = world.addPhone();
    world.trustEarlier(phone);
    phone.connectStep = {10ms, radioError, true};
    world.radio.setState(BluetoothState::poweredOn);
    world.run(10ms);
    for (const int seconds : {1, 2, 4, 8, 16, 30, 30, 30}) {
        ASSERT_EQ(*world.link.statusMessage, "Reconnecting in " + std::to_string(seconds) + "s…");
        world.run(std::chrono::seconds(seconds) - 1ms);
        EXPECT_TRUE(world.link.isRetryScheduled());
        EXPECT_EQ(world.radio.requestCount(), 0u) << "nothing is tried before its time";
        world.run(1ms);
        EXPECT_FALSE(world.link.isRetryScheduled());
        EXPECT_EQ(world.radio.requestCount(), 1u);
        world.run(10ms);
    }
    phone.connectStep.error.reset();
    world.run(31s);
    ASSERT_EQ(*world.link.phase, LinkPhase::connected);
    phone.connectStep.error = radioError;
    phone.dropLink();
    world.run(10ms);
    EXPECT_EQ(*world.link.statusMessage, "Reconnecting in 1s…") << "a completed connection starts over";
}

TEST(Delays, ofEveryTimeOutAreKeptToTheMillisecond) {
    const struct {
        const char* what;
        std::chrono::milliseconds delay;
        /// Sets the scene; the time-out starts to run at its end.
        std::function<void(LinkWorld&, SimulatedPhone&)> start;
        std::function<bool(LinkWorld&, SimulatedPhone&)> hasHappened;
    } rows[] = {
        {"user's connect", 20s,
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.connectStep.isAnswered = false;
             world.connectByUser(phone);
         },
         [](LinkWorld& world, SimulatedPhone&) { return *world.link.phase != LinkPhase::connecting; }},
        {"automatic connect", 12s,
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.connectStep.isAnswered = false;
             world.link.setAutoConnectEnabled(false);
             world.trustEarlier(phone);
             world.run(500ms);
             world.link.setAutoConnectEnabled(true);
             world.run(500ms);
             EXPECT_EQ(*world.link.phase, LinkPhase::connecting);
         },
         [](LinkWorld& world, SimulatedPhone&) { return *world.link.phase != LinkPhase::connecting; }},
        {"handshake", 45s,
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.servicesStep.isAnswered = false;
             world.connectByUser(phone);
             world.run(phone.connectStep.delay);
             EXPECT_EQ(*world.link.phase, LinkPhase::securing);
         },
         [](LinkWorld& world, SimulatedPhone&) { return *world.link.phase != LinkPhase::securing; }},
        {"goodbye", 150ms,
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.establish(phone);
             world.link.disconnect();
             EXPECT_EQ(phone.received.back(), ControlMessage{ControlMessage::Goodbye{}});
         },
         [](LinkWorld&, SimulatedPhone& phone) { return !phone.isConnected(); }},
        {"restart after wake", 1500ms,
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.establish(phone);
             phone.connectStep.error = radioError;
             phone.dropLink();
             world.run(500ms);
             EXPECT_EQ(*world.link.statusMessage, "Reconnecting in 1s…");
             phone.setInRange(false);
             world.wake.didWake.emit();
         },
         [](LinkWorld& world, SimulatedPhone&) {
             return *world.link.statusMessage == "Waiting for a trusted iPhone…";
         }},
        {"rescan of a connected link", 10s,
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.establish(phone);
             world.link.rescan();
             EXPECT_TRUE(*world.link.isScanning);
         },
         [](LinkWorld& world, SimulatedPhone&) {
             return !*world.link.isScanning && !world.radio.isScanning();
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        LinkWorld world;
        auto& phone = world.addPhone();
        row.start(world, phone);
        EXPECT_FALSE(row.hasHappened(world, phone));
        world.run(row.delay - 1ms);
        EXPECT_FALSE(row.hasHappened(world, phone));
        world.run(1ms);
        EXPECT_TRUE(row.hasHappened(world, phone));
    }
}

TEST(Scan, neverStopsWhileThereIsNoSession) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    world.link.rescan();
    world.run(5s);
    world.link.disconnect();
    world.run(60s);
    EXPECT_TRUE(*world.link.isScanning);
    EXPECT_TRUE(world.radio.isScanning());
}

TEST(Retry, isCalledOffByWakeRescanAndTheUsersConnect) {
    const struct {
        const char* what;
        std::function<void(LinkWorld&, SimulatedPhone&)> act;
    } rows[] = {
        {"wake", [](LinkWorld& world, SimulatedPhone&) { world.wake.didWake.emit(); }},
        {"rescan", [](LinkWorld& world, SimulatedPhone&) { world.link.rescan(); }},
        {"user connects",
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.link.connectPeripheral({phone.identifier(), phone.info.name}, phone.info.name);
         }},
        {"power lost",
         [](LinkWorld& world, SimulatedPhone&) { world.radio.setState(BluetoothState::poweredOff); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        LinkWorld world(BluetoothState::unknown);
        auto& phone = world.addPhone();
        world.trustEarlier(phone);
        phone.connectStep.error = radioError;
        world.radio.setState(BluetoothState::poweredOn);
        world.run(8s);
        ASSERT_TRUE(world.link.isRetryScheduled());
        row.act(world, phone);
        world.queue.runDue();
        EXPECT_FALSE(world.link.isRetryScheduled());
    }
}

// Who sent whom away, and what brings the phone back.
TEST(Suppression, endsAsItsReasonSays) {
    const struct {
        const char* what;
        std::function<void(LinkWorld&, SimulatedPhone&)> sendAway;
        bool comesBackByItself;
    } rows[] = {
        {"user disconnects", [](LinkWorld& world, SimulatedPhone&) { world.link.disconnect(); }, false},
        {"phone asks to disconnect",
         [](LinkWorld&, SimulatedPhone& phone) {
             phone.send(ControlMessage{ControlMessage::DisconnectRequest{}});
         },
         true},
        {"phone withdraws and offers its service again",
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.withdrawService();
             world.run(100ms);
             phone.hasService = true;
         },
         true},
        {"link drops", [](LinkWorld&, SimulatedPhone& phone) { phone.dropLink(); }, true},
        {"pairing fails",
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.infoStep.error =
                 BluetoothError{BluetoothError::Kind::attribute, 15, "Encryption is insufficient."};
             phone.dropLink();
             world.run(5s);
             phone.infoStep.error.reset();
         },
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        LinkWorld world;
        auto& phone = world.addPhone();
        world.establish(phone);
        ASSERT_EQ(*world.link.phase, LinkPhase::connected);
        row.sendAway(world, phone);
        world.run(120s);
        EXPECT_EQ(*world.link.phase, row.comesBackByItself ? LinkPhase::connected : LinkPhase::searching);
        world.radio.setState(BluetoothState::poweredOff);
        world.run(1s);
        world.radio.setState(BluetoothState::poweredOn);
        world.link.rescan();
        world.run(60s);
        EXPECT_EQ(*world.link.phase, row.comesBackByItself ? LinkPhase::connected : LinkPhase::searching)
            << "neither a power cycle nor a search lifts it";
        world.link.connectTrustedDevice(world.store.devices->front());
        world.run(5s);
        EXPECT_EQ(*world.link.phase, LinkPhase::connected) << "the user's wish does";
        phone.dropLink();
        world.run(10s);
        EXPECT_EQ(*world.link.phase, LinkPhase::connected) << "for good";
    }
}

TEST(Suppression, ofThePhonesOwnMakingLastsUntilItIsHeardMoreThanThreeSecondsLater) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    phone.setAdvertising(false);
    phone.send(ControlMessage{ControlMessage::DisconnectRequest{}});
    world.run(1s);
    phone.setAdvertising(true);
    world.run(1900ms);
    EXPECT_FALSE(world.link.session());
    world.run(2500ms);
    EXPECT_TRUE(world.link.session());
}

TEST(Suppression, ofADeviceHoldsUnderAnotherAddress) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    world.link.disconnect();
    world.run(1s);
    phone.changeAddress(LinkWorld::newAddress);
    world.run(30s);
    EXPECT_EQ(*world.link.phase, LinkPhase::searching);
}

TEST(Suppression, isLiftedByTheUsersConnectFromTheNearbyList) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.connectByUser(phone);
    world.link.cancelConnectionAttempt();
    EXPECT_EQ(*world.link.activeDevice, std::nullopt);
    world.establish(phone);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    phone.dropLink();
    world.run(5s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
}

// However an iPhone under a new address was sent away, once the user has it connected it comes back by
// itself.
TEST(Suppression, ofANewAddressEndsWithTheUsersConnection) {
    const struct {
        const char* what;
        std::function<void(LinkWorld&, SimulatedPhone&)> sendAway;
    } rows[] = {
        {"pairing fails",
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.infoStep.error = BluetoothError{BluetoothError::Kind::attribute, 15, "Not encrypted."};
             world.run(3s);
             phone.infoStep.error.reset();
         }},
        {"attempt cancelled",
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.connectStep.isAnswered = false;
             world.run(1s);
             world.link.cancelConnectionAttempt();
             phone.connectStep.isAnswered = true;
         }},
        {"disconnected, and connected without a name",
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.run(3s);
             world.link.disconnect();
             world.run(1s);
             phone.changeAddress(LinkWorld::otherAddress);
             phone.advertisedName.clear();
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        LinkWorld world;
        auto& phone = world.addPhone();
        const auto record = world.trustEarlier(phone);
        phone.changeAddress(LinkWorld::newAddress);
        row.sendAway(world, phone);
        world.run(2s);
        ASSERT_EQ(*world.link.phase, LinkPhase::searching);
        if (phone.advertisedName.empty()) {
            world.link.connectNearbyDevice(phone.identifier());
        } else {
            world.link.connectTrustedDevice(record);
        }
        world.run(2s);
        ASSERT_EQ(*world.link.phase, LinkPhase::connected);
        phone.dropLink();
        world.run(10s);
        EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    }
}

TEST(Forgetting, leavesNothingUnderWayThatTrustsTheIPhoneAgain) {
    const struct {
        const char* name;  ///< advertised under a new address
        std::chrono::seconds forgottenAfter;
    } rows[] = {
        {"OXA1B2C3:Studio iPhone", 1s}, {"OXA1B2C3:Studio iPhone", 3s}, {"", 1s}, {"", 3s},
        {"OXB0B0B0:Another", 1s},       {"OXB0B0B0:Another", 3s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name + std::to_string(row.forgottenAfter.count()));
        LinkWorld world;
        world.link.setAutoConnectEnabled(false);
        auto& phone = world.addPhone();
        const auto record = world.trustEarlier(phone);
        phone.changeAddress(LinkWorld::newAddress);
        phone.advertisedName = row.name;
        phone.connectStep.delay = phone.infoStep.delay = 2s;
        world.connectByUser(phone);
        world.run(row.forgottenAfter);
        world.link.forgetDevice(record);
        EXPECT_EQ(*world.link.phase == LinkPhase::searching, phone.advertisedName != "OXB0B0B0:Another");
        world.link.setAutoConnectEnabled(true);
        world.run(60s);
        EXPECT_TRUE(world.store.devices->empty());
        EXPECT_FALSE(phone.isConnected());
        world.establish(phone);
        world.run(5s);
        EXPECT_EQ(world.store.devices->size(), 1u) << "asked for anew";
        EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    }
}

TEST(Looking, forAnotherIPhoneDuringASessionEndsAfterTenSecondsOrWithIt) {
    LinkWorld world;
    auto& phone = world.addPhone();
    auto& other = world.addPhone("Other", LinkWorld::otherDeviceID, LinkWorld::otherAddress);
    other.setInRange(false);
    world.establish(phone);
    TrustedDevice wanted{LinkWorld::otherDeviceID, "Other",     "B0B0B0", std::nullopt,
                         world.queue.now(),        std::nullopt};
    world.store.trust(wanted);
    world.link.connectTrustedDevice(wanted);
    EXPECT_EQ(*world.link.statusMessage, "Looking for Other…");
    world.run(10s - 1ms);
    EXPECT_TRUE(*world.link.isScanning);
    world.run(1ms);
    EXPECT_EQ(*world.link.statusMessage, "Connected to Studio iPhone");
    EXPECT_FALSE(*world.link.isScanning);
    other.setInRange(true);
    world.link.rescan();
    world.run(10s);
    EXPECT_EQ(world.link.activeDevice.get()->name, "Studio iPhone") << "the wish has passed";

    other.setInRange(false);
    world.link.rescan();
    world.run(10s);
    world.link.connectTrustedDevice(wanted);
    world.run(3s);
    other.setInRange(true);
    world.run(3s);
    EXPECT_EQ(*world.link.statusMessage, "Connected to Other");
    EXPECT_EQ(phone.received.back(), ControlMessage{ControlMessage::Goodbye{}});
}

TEST(WithoutService, isTriedAgainOnceHeardAfterThreeSeconds) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.trustEarlier(phone);
    phone.hasService = false;
    world.run(2s);
    EXPECT_TRUE(world.sawLine("Orbinex isn't active on the iPhone"));
    phone.hasService = true;
    world.run(6s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
}

TEST(AutoConnect, offCancelsBackgroundRequestsAndLeavesASessionAlone) {
    LinkWorld world(BluetoothState::unknown);
    auto& phone = world.addPhone();
    world.trustEarlier(phone);
    phone.setInRange(false);
    world.radio.setState(BluetoothState::poweredOn);
    world.run(1s);
    EXPECT_EQ(world.radio.requestCount(), 1u);
    world.link.setAutoConnectEnabled(false);
    EXPECT_EQ(world.radio.requestCount(), 0u);
    phone.setInRange(true);
    world.run(30s);
    EXPECT_EQ(*world.link.phase, LinkPhase::searching);
    world.link.setAutoConnectEnabled(true);
    world.run(1s);
    ASSERT_EQ(*world.link.phase, LinkPhase::connected);
    world.link.setAutoConnectEnabled(false);
    world.run(30s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
}

TEST(Switching, fromOnePhoneToAnotherSaysGoodbyeAndStays) {
    LinkWorld world;
    auto& first = world.addPhone("First");
    auto& second = world.addPhone("Second", LinkWorld::otherDeviceID, LinkWorld::otherAddress);
    world.establish(first);
    world.link.rescan();
    world.establish(second);
    ASSERT_EQ(*world.link.phase, LinkPhase::connected);
    EXPECT_EQ(world.link.activeDevice.get()->name, "Second");
    EXPECT_EQ(first.received.back(), ControlMessage{ControlMessage::Goodbye{}});
    EXPECT_EQ(world.connectionsLost, 1);
    EXPECT_FALSE(first.isConnected());

    second.dropLink();
    world.run(10s);
    EXPECT_EQ(world.link.activeDevice.get()->name, "Second") << "the first one was sent away";

    world.link.connectTrustedDevice(*world.store.deviceWithID(LinkWorld::deviceID));
    world.run(2s);
    EXPECT_EQ(world.link.activeDevice.get()->name, "First");
    EXPECT_EQ(world.radio.connectedCount(), 1u);
}

TEST(Switching, duringAnAttemptGivesTheFirstOneUp) {
    LinkWorld world;
    auto& first = world.addPhone("First");
    auto& second = world.addPhone("Second", LinkWorld::otherDeviceID, LinkWorld::otherAddress);
    first.connectStep.delay = 3s;
    world.connectByUser(first);
    world.run(1s);
    world.link.connectNearbyDevice(second.identifier());
    world.run(60s);
    EXPECT_EQ(world.link.activeDevice.get()->name, "Second");
    EXPECT_EQ(world.store.devices->size(), 1u);
    EXPECT_TRUE(world.alerts.empty());
}

TEST(Reconnecting, rightAfterTheUsersDisconnectIsNotCutByTheFarewell) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    world.link.disconnect();
    world.run(50ms);
    world.link.connectTrustedDevice(world.store.devices->front());
    world.run(5s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    EXPECT_EQ(phone.received.back(), ControlMessage{*world.bridge.currentTelemetry});
    EXPECT_TRUE(world.alerts.empty());
}

TEST(Reconnecting, byABackgroundRequestIsNotCutByTheFarewell) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.establish(phone);
    const TrustedDevice record = world.store.devices->front();
    world.link.forgetDevice(record);
    world.store.trust(record);
    world.link.rescan();
    world.run(1s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
}

// Bluetooth goes off and comes back at every point of a session's life.
TEST(PowerCycle, atEveryPhaseLeavesNothingBehindAndComesBack) {
    const struct {
        const char* phase;
        std::function<void(LinkWorld&, SimulatedPhone&)> reach;
    } rows[] = {
        {"searching", [](LinkWorld&, SimulatedPhone&) {}},
        {"connecting",
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.connectStep.isAnswered = false;
             world.connectByUser(phone);
             ASSERT_EQ(*world.link.phase, LinkPhase::connecting);
         }},
        {"securing",
         [](LinkWorld& world, SimulatedPhone& phone) {
             phone.infoStep.isAnswered = false;
             world.connectByUser(phone);
             world.run(500ms);
             ASSERT_EQ(*world.link.phase, LinkPhase::securing);
         }},
        {"connected", [](LinkWorld& world, SimulatedPhone& phone) { world.establish(phone); }},
        {"retrying",
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.establish(phone);
             phone.connectStep.error = radioError;
             phone.dropLink();
             world.run(500ms);
             ASSERT_TRUE(world.link.isRetryScheduled());
         }},
        {"saying goodbye",
         [](LinkWorld& world, SimulatedPhone& phone) {
             world.establish(phone);
             world.link.disconnect();
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.phase);
        LinkWorld world;
        auto& phone = world.addPhone();
        row.reach(world, phone);
        world.radio.setState(BluetoothState::poweredOff);
        world.run(0s);
        EXPECT_EQ(*world.link.phase, LinkPhase::bluetoothUnavailable);
        EXPECT_EQ(*world.link.activeDevice, std::nullopt);
        EXPECT_FALSE(world.link.session());
        EXPECT_FALSE(*world.link.isScanning);
        EXPECT_TRUE(world.link.nearbyDevices->empty());
        world.forgetWhatWasSeen();
        world.link.rescan();
        world.link.cancelConnectionAttempt();
        world.link.disconnect();
        world.link.connectPeripheral({phone.identifier(), "Studio iPhone"}, "Studio iPhone");
        world.run(100s);
        EXPECT_EQ(*world.link.phase, LinkPhase::bluetoothUnavailable);
        EXPECT_EQ(*world.link.statusMessage,
                  "Bluetooth is turned off. Turn it on in Control Center or System Settings.");
        EXPECT_TRUE(world.alerts.empty());
        EXPECT_EQ(world.queue.pendingTimers(), 1u) << "only the pruning of the nearby list";

        phone.connectStep = {};
        phone.infoStep = {};
        world.radio.setState(BluetoothState::poweredOn);
        world.run(2s);
        world.link.connectNearbyDevice(phone.identifier());
        world.run(2s);
        EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    }
}

}  // namespace
}  // namespace orbinex
