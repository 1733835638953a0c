// The status lines and alerts of Bluetooth's states and of what leads to a connection, or fails to.

#include "text_rows.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using World = LinkWorld;
using Phone = SimulatedPhone;

const BluetoothError forgotten{BluetoothError::Kind::framework, BluetoothError::peerRemovedPairingInformation,
                               "Framework error."};
const ShownAlert pairAgain{
    "Pair Studio iPhone Again",
    "Studio iPhone no longer recognizes this Mac. Open System Settings → Bluetooth on this Mac, "
    "remove Studio iPhone from My Devices, then click Trust & Connect again."};
const ShownAlert unreachable{
    "Couldn't Reach Studio iPhone",
    "Make sure Orbinex is open on your iPhone and the phone is unlocked and nearby, then try "
    "again."};

TextEvent bluetoothIs(BluetoothState state) {
    return [state](World& world, Phone&) {
        world.radio.setState(state);
        world.run(0s);
    };
}

TEST(AttemptTexts, everyEventShowsItsLinesAndAlerts) {
    expectTexts({
        {"bluetooth unknown", false, bluetoothIs(BluetoothState::unknown), {}, "Starting Bluetooth…", {}},
        {"bluetooth resetting",
         false,
         bluetoothIs(BluetoothState::resetting),
         {},
         "Bluetooth is restarting…",
         {}},
        {"bluetooth unsupported",
         false,
         bluetoothIs(BluetoothState::unsupported),
         {},
         "This Mac doesn't support Bluetooth Low Energy.",
         {}},
        {"bluetooth unauthorized",
         false,
         bluetoothIs(BluetoothState::unauthorized),
         {},
         "Orbinex needs Bluetooth access. Allow it in System Settings → Privacy & Security → Bluetooth.",
         {}},
        {"bluetooth off",
         false,
         bluetoothIs(BluetoothState::poweredOff),
         {},
         "Bluetooth is turned off. Turn it on in Control Center or System Settings.",
         {}},
        {"nothing trusted", false, [](World&, Phone&) {}, {"Starting Bluetooth…"}, searching, {}},
        {"something trusted",
         true,
         [](World& world, Phone& phone) {
             phone.setInRange(false);
             world.run(1s);
         },
         {},
         waiting,
         {}},
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
           "will connect automatically."}}},
        {"user attempt out of time",
         false,
         [](World& world, Phone& phone) {
             phone.connectStep.isAnswered = false;
             world.connectByUser(phone);
             world.run(20s);
         },
         {"Connecting to Studio iPhone…"},
         searching,
         {unreachable}},
        {"user attempt refused",
         false,
         userConnectsAfter([](Phone& phone) { phone.connectStep.error = radioError; }),
         {},
         searching,
         {{"Couldn't Connect to Studio iPhone", "The radio is busy."}}},
        {"user attempt, phone forgot the pairing",
         false,
         userConnectsAfter([](Phone& phone) { phone.connectStep.error = forgotten; }),
         {},
         searching,
         {pairAgain}},
        {"background request, phone forgot the pairing",
         true,
         connectsByItselfAfter([](Phone& phone) {
             phone.connectStep.delay = 10ms;  // before it is heard
             phone.connectStep.error = forgotten;
         }),
         {},
         waiting,
         {pairAgain}},
        {"background request failed",
         true,
         connectsByItselfAfter([](Phone& phone) {
             phone.connectStep.delay = 10ms;
             phone.connectStep.error = radioError;
         }),
         {},
         retrying,
         {}},
        {"automatic attempt failed",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.connectStep.error = radioError; }),
         {"Connecting to Studio iPhone…"},
         retrying,
         {}},
        {"automatic attempt out of time",
         true,
         [](World& world, Phone& phone) {
             phone.connectStep.isAnswered = false;
             world.run(12100ms);
         },
         {"Connecting to Studio iPhone…"},
         retrying,
         {}},
    });
}

TEST(AttemptTexts, theSecondOfTwoAlertsStandsAndIsNew) {
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
