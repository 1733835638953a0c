// Every status line and alert, each produced by what happens on the air or by what the user does.

#include <functional>
#include <ostream>

#include <gtest/gtest.h>

#include "link_world.h"
#include "protocol/gatt.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using World = LinkWorld;
using Phone = SimulatedPhone;

struct Shown {
    std::string title;
    std::string message;
    friend bool operator==(const Shown&, const Shown&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Shown& s) {
        return out << s.title << ": " << s.message;
    }
};

struct Row {
    const char* event;
    /// The phone is trusted from an earlier run: it is connected by itself.
    bool isTrusted;
    std::function<void(World&, Phone&)> happens;
    /// Must be seen, in this order, not necessarily in direct succession.
    std::vector<std::string> lines;
    /// The line that stays.
    std::string last;
    std::vector<Shown> alerts;
};

BluetoothError attributeError(int code) {
    return {BluetoothError::Kind::attribute, code, "Attribute error."};
}
BluetoothError frameworkError(int code) {
    return {BluetoothError::Kind::framework, code, "Framework error."};
}
const std::string securing = "Securing connection with Studio iPhone…";
const std::string connected = "Connected to Studio iPhone";
const std::string searching = "Searching for iPhones running Orbinex…";
const std::string waiting = "Waiting for a trusted iPhone…";
const std::string retrying = "Reconnecting in 1s…";
const Shown pairingFailed{
    "Pairing Not Completed",
    "Orbinex needs a secure Bluetooth pairing with Studio iPhone. Click Connect and accept the "
    "pairing request on both your Mac and iPhone."};
const Shown pairAgain{
    "Pair Studio iPhone Again",
    "Studio iPhone no longer recognizes this Mac. Open System Settings → Bluetooth on this Mac, "
    "remove Studio iPhone from My Devices, then click Trust & Connect again."};
const Shown unreachable{
    "Couldn't Reach Studio iPhone",
    "Make sure Orbinex is open on your iPhone and the phone is unlocked and nearby, then try "
    "again."};

void userConnects(World& world, const Phone& phone) {
    world.connectByUser(phone);
    world.run(600ms);
}
std::function<void(World&, Phone&)> userConnectsAfter(std::function<void(Phone&)> set) {
    return [set](World& world, Phone& phone) {
        set(phone);
        userConnects(world, phone);
    };
}
std::function<void(World&, Phone&)> connectsByItselfAfter(std::function<void(Phone&)> set) {
    return [set](World& world, Phone& phone) {
        set(phone);
        world.run(600ms);
    };
}

std::vector<Row> rows() {
    std::vector<Row> all;
    const auto state = [](BluetoothState next) {
        return [next](World& world, Phone&) {
            world.radio.setState(next);
            world.run(0s);
        };
    };
    all.push_back(
        {"bluetooth unknown", false, state(BluetoothState::unknown), {}, "Starting Bluetooth…", {}});
    all.push_back(
        {"bluetooth resetting", false, state(BluetoothState::resetting), {}, "Bluetooth is restarting…", {}});
    all.push_back({"bluetooth unsupported",
                   false,
                   state(BluetoothState::unsupported),
                   {},
                   "This Mac doesn't support Bluetooth Low Energy.",
                   {}});
    all.push_back(
        {"bluetooth unauthorized",
         false,
         state(BluetoothState::unauthorized),
         {},
         "Orbinex needs Bluetooth access. Allow it in System Settings → Privacy & Security → Bluetooth.",
         {}});
    all.push_back({"bluetooth off",
                   false,
                   state(BluetoothState::poweredOff),
                   {},
                   "Bluetooth is turned off. Turn it on in Control Center or System Settings.",
                   {}});
    all.push_back({"nothing trusted", false, [](World&, Phone&) {}, {"Starting Bluetooth…"}, searching, {}});
    all.push_back({"something trusted",
                   true,
                   [](World& world, Phone& phone) {
                       phone.setInRange(false);
                       world.run(1s);
                   },
                   {},
                   waiting,
                   {}});
    all.push_back(
        {"user connects a trusted phone that nobody knows",
         false,
         [](World& world, Phone&) {
             world.link.connectTrustedDevice({World::otherDeviceID, "Far Phone", "B0B0B0", std::nullopt,
                                              world.queue.now(), std::nullopt});
         },
         {},
         "Looking for Far Phone…",
         {{"Far Phone Isn't Nearby",
           "Open Orbinex on your iPhone, keep it unlocked, and make sure it's within Bluetooth range. It "
           "will connect automatically."}}});
    all.push_back(
        {"session complete", false, userConnects, {"Connecting to Studio iPhone…", securing}, connected, {}});
    all.push_back({"session complete with an empty name",
                   false,
                   userConnectsAfter([](Phone& phone) { phone.info.name.clear(); }),
                   {},
                   "Connected to ",
                   {}});
    all.push_back({"trusted phone connected by itself",
                   true,
                   connectsByItselfAfter([](Phone&) {}),
                   {securing},
                   connected,
                   {}});
    all.push_back({"user attempt out of time",
                   false,
                   [](World& world, Phone& phone) {
                       phone.connectStep.isAnswered = false;
                       world.connectByUser(phone);
                       world.run(20s);
                   },
                   {"Connecting to Studio iPhone…"},
                   searching,
                   {unreachable}});
    all.push_back({"user attempt refused",
                   false,
                   userConnectsAfter([](Phone& phone) { phone.connectStep.error = radioError; }),
                   {},
                   searching,
                   {{"Couldn't Connect to Studio iPhone", "The radio is busy."}}});
    all.push_back({"user attempt, phone forgot the pairing",
                   false,
                   userConnectsAfter([](Phone& phone) {
                       phone.connectStep.error =
                           frameworkError(BluetoothError::peerRemovedPairingInformation);
                   }),
                   {},
                   searching,
                   {pairAgain}});
    all.push_back({"background request, phone forgot the pairing",
                   true,
                   connectsByItselfAfter([](Phone& phone) {
                       phone.connectStep.delay = 10ms;  // before it is heard
                       phone.connectStep.error =
                           frameworkError(BluetoothError::peerRemovedPairingInformation);
                   }),
                   {},
                   waiting,
                   {pairAgain}});
    all.push_back({"background request failed",
                   true,
                   connectsByItselfAfter([](Phone& phone) {
                       phone.connectStep.delay = 10ms;
                       phone.connectStep.error = radioError;
                   }),
                   {},
                   retrying,
                   {}});
    all.push_back({"automatic attempt failed",
                   true,
                   connectsByItselfAfter([](Phone& phone) { phone.connectStep.error = radioError; }),
                   {"Connecting to Studio iPhone…"},
                   retrying,
                   {}});
    all.push_back({"automatic attempt out of time",
                   true,
                   [](World& world, Phone& phone) {
                       phone.connectStep.isAnswered = false;
                       world.run(12100ms);
                   },
                   {"Connecting to Studio iPhone…"},
                   retrying,
                   {}});
    all.push_back(
        {"user handshake out of time",
         false,
         [](World& world, Phone& phone) {
             phone.infoStep.isAnswered = false;
             userConnects(world, phone);
             world.run(45s);
         },
         {securing, "Secure handshake timed out"},
         searching,
         {{"Connection Timed Out",
           "The secure handshake with Studio iPhone didn't finish. If a pairing request appeared, accept it "
           "on both devices, then try again."}}});
    all.push_back({"automatic handshake out of time",
                   true,
                   [](World& world, Phone& phone) {
                       phone.infoStep.isAnswered = false;
                       world.run(45500ms);
                   },
                   {securing, "Secure handshake timed out"},
                   retrying,
                   {}});
    all.push_back({"service discovery error",
                   true,
                   connectsByItselfAfter([](Phone& phone) { phone.servicesStep.error = radioError; }),
                   {"Service discovery failed: The radio is busy."},
                   retrying,
                   {}});
    all.push_back({"service missing",
                   false,
                   userConnectsAfter([](Phone& phone) { phone.hasService = false; }),
                   {"Orbinex isn't active on the iPhone"},
                   searching,
                   {}});
    all.push_back({"characteristic discovery error",
                   true,
                   connectsByItselfAfter([](Phone& phone) { phone.characteristicsStep.error = radioError; }),
                   {"Characteristic discovery failed: The radio is busy."},
                   retrying,
                   {}});
    all.push_back(
        {"a characteristic missing",
         true,
         connectsByItselfAfter([](Phone& phone) {
             phone.missingCharacteristics = {OrbinexProtocol::keyboardCharacteristicUUID};
         }),
         {"Update required"},
         waiting,
         {{"Update Required",
           "Studio iPhone is running a different version of Orbinex. Update Orbinex on both your iPhone and "
           "Mac to the latest version."}}});
    all.push_back({"device information unreadable",
                   true,
                   connectsByItselfAfter([](Phone& phone) { phone.infoStep.error = radioError; }),
                   {"Couldn't read device info: The radio is busy."},
                   retrying,
                   {}});
    all.push_back({"device information malformed",
                   false,
                   userConnectsAfter([](Phone& phone) { phone.infoValue = Bytes(16, 2); }),
                   {"Invalid device info"},
                   searching,
                   {}});
    all.push_back(
        {"older phone",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.info.protocolVersion = 1; }),
         {"Version mismatch"},
         waiting,
         {{"Update Required",
           "Studio iPhone has an older version of Orbinex. Update Orbinex on your iPhone to continue."}}});
    all.push_back(
        {"newer phone",
         false,
         userConnectsAfter([](Phone& phone) { phone.info.protocolVersion = 3; }),
         {"Version mismatch"},
         searching,
         {{"Update Required",
           "Studio iPhone has a newer version of Orbinex. Update Orbinex on this Mac to continue."}}});
    all.push_back({"subscription error",
                   true,
                   connectsByItselfAfter([](Phone& phone) { phone.subscribeStep.error = radioError; }),
                   {"Subscription failed: The radio is busy."},
                   retrying,
                   {}});
    for (const int code : {5, 12, 15}) {
        all.push_back(
            {"pairing failure while reading",
             true,
             connectsByItselfAfter([code](Phone& phone) { phone.infoStep.error = attributeError(code); }),
             {"Pairing not completed"},
             waiting,
             {pairingFailed}});
    }
    all.push_back({"pairing failure while subscribing",
                   false,
                   userConnectsAfter([](Phone& phone) {
                       phone.subscribeStep.error = frameworkError(BluetoothError::encryptionTimedOut);
                   }),
                   {"Pairing not completed"},
                   waiting,
                   {pairingFailed}});
    all.push_back({"another attribute error is no pairing failure",
                   true,
                   connectsByItselfAfter([](Phone& phone) { phone.infoStep.error = attributeError(14); }),
                   {"Couldn't read device info: Attribute error."},
                   retrying,
                   {}});
    all.push_back({"user's handshake breaks off",
                   false,
                   [](World& world, Phone& phone) {
                       phone.infoStep.isAnswered = false;
                       userConnects(world, phone);
                       phone.dropLink();
                       world.run(0s);
                   },
                   {securing},
                   searching,
                   {pairingFailed}});
    all.push_back({"automatic handshake breaks off",
                   true,
                   [](World& world, Phone& phone) {
                       phone.infoStep.isAnswered = false;
                       world.run(600ms);
                       phone.dropLink();
                       world.run(0s);
                   },
                   {securing},
                   retrying,
                   {}});
    all.push_back({"user disconnects",
                   false,
                   [](World& world, Phone& phone) {
                       userConnects(world, phone);
                       world.link.disconnect();
                       world.run(100ms);
                   },
                   {connected},
                   "Disconnected from Studio iPhone",
                   {}});
    all.push_back({"user cancels an attempt",
                   false,
                   [](World& world, Phone& phone) {
                       phone.connectStep.isAnswered = false;
                       userConnects(world, phone);
                       world.link.cancelConnectionAttempt();
                   },
                   {"Connecting to Studio iPhone…"},
                   "Connection cancelled",
                   {}});
    all.push_back({"user cancels a handshake",
                   false,
                   [](World& world, Phone& phone) {
                       phone.infoStep.isAnswered = false;
                       userConnects(world, phone);
                       world.link.cancelConnectionAttempt();
                   },
                   {securing},
                   "Connection cancelled",
                   {}});
    all.push_back({"phone asks to disconnect",
                   false,
                   [](World& world, Phone& phone) {
                       userConnects(world, phone);
                       phone.setAdvertising(false);
                       phone.send(ControlMessage{ControlMessage::DisconnectRequest{}});
                       world.run(0s);
                   },
                   {connected},
                   "Studio iPhone disconnected",
                   {}});
    all.push_back({"phone withdraws its service",
                   false,
                   [](World& world, Phone& phone) {
                       userConnects(world, phone);
                       phone.setAdvertising(false);
                       phone.withdrawService();
                       world.run(0s);
                   },
                   {connected},
                   "Studio iPhone paused Orbinex",
                   {}});
    all.push_back({"connection lost",
                   false,
                   [](World& world, Phone& phone) {
                       userConnects(world, phone);
                       phone.setInRange(false);
                       world.run(0s);
                   },
                   {connected, "Connection to Studio iPhone lost — reconnecting…"},
                   waiting,
                   {}});
    all.push_back({"a phone nobody trusts is reached by itself",
                   true,
                   [](World& world, Phone& phone) {
                       // The same peripheral now says that it is somebody else.
                       phone.info = {2, World::otherDeviceID, "Stranger"};
                       while (!world.sawLine("Stranger is waiting to be trusted") &&
                              world.queue.uptime() < 5s) {
                           world.run(1ms);
                       }
                   },
                   {"Stranger is waiting to be trusted"},
                   waiting,
                   {}});
    return all;
}

TEST(LinkTexts, everyEventShowsItsLinesAndAlerts) {
    for (const auto& row : rows()) {
        SCOPED_TRACE(row.event);
        LinkWorld world(row.isTrusted ? BluetoothState::unknown : BluetoothState::poweredOn);
        auto& phone = world.addPhone();
        if (row.isTrusted) {
            // A background request waits at the moment Bluetooth comes up.
            world.trustEarlier(phone);
            phone.connectStep.delay = 200ms;
            world.radio.setState(BluetoothState::poweredOn);
        }
        row.happens(world, phone);

        auto seen = world.lines.begin();
        for (const auto& line : row.lines) {
            seen = std::find(seen, world.lines.end(), line);
            ASSERT_NE(seen, world.lines.end()) << line << "\n" << testing::PrintToString(world.lines);
            ++seen;
        }
        EXPECT_EQ(*world.link.statusMessage, row.last) << testing::PrintToString(world.lines);
        std::vector<Shown> shown;
        for (const auto& alert : world.alerts) shown.push_back({alert.title, alert.message});
        EXPECT_EQ(shown, row.alerts);
    }
}

TEST(LinkTexts, theSecondOfTwoAlertsStandsAndIsNew) {
    LinkWorld world;
    const TrustedDevice unknown{LinkWorld::otherDeviceID, "A", "B0B0B0", std::nullopt, Date{}, std::nullopt};
    world.link.connectTrustedDevice(unknown);
    const auto first = *world.link.alert;
    world.link.connectTrustedDevice(unknown);
    EXPECT_NE(world.link.alert.get()->id, first->id);
    EXPECT_EQ(world.link.alert.get()->title, first->title);
}

}  // namespace
}  // namespace orbinex
