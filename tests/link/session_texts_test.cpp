// The status lines and alerts of a session, from the handshake to its end.

#include "protocol/gatt.h"
#include "text_rows.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using World = LinkWorld;
using Phone = SimulatedPhone;

BluetoothError attributeError(int code) {
    return {BluetoothError::Kind::attribute, code, "Attribute error."};
}
const std::string connected = "Connected to Studio iPhone";
const ShownAlert pairingFailed{
    "Pairing Not Completed",
    "Orbinex needs a secure Bluetooth pairing with Studio iPhone. Click Connect and accept the "
    "pairing request on both your Mac and iPhone."};

TextRow pairingFailsWhileReading(int code) {
    return {"pairing failure while reading",
            true,
            connectsByItselfAfter([code](Phone& phone) { phone.infoStep.error = attributeError(code); }),
            {"Pairing not completed"},
            waiting,
            {pairingFailed}};
}

TEST(SessionTexts, everyEventShowsItsLinesAndAlerts) {
    expectTexts({
        {"session complete", false, userConnects, {"Connecting to Studio iPhone…", securing}, connected, {}},
        {"session complete with an empty name",
         false,
         userConnectsAfter([](Phone& phone) { phone.info.name.clear(); }),
         {},
         "Connected to ",
         {}},
        {"trusted phone connected by itself",
         true,
         connectsByItselfAfter([](Phone&) {}),
         {securing},
         connected,
         {}},
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
           "on both devices, then try again."}}},
        {"automatic handshake out of time",
         true,
         [](World& world, Phone& phone) {
             phone.infoStep.isAnswered = false;
             world.run(45500ms);
         },
         {securing, "Secure handshake timed out"},
         retrying,
         {}},
        {"service discovery error",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.servicesStep.error = radioError; }),
         {"Service discovery failed: The radio is busy."},
         retrying,
         {}},
        {"service missing",
         false,
         userConnectsAfter([](Phone& phone) { phone.hasService = false; }),
         {"Orbinex isn't active on the iPhone"},
         searching,
         {}},
        {"characteristic discovery error",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.characteristicsStep.error = radioError; }),
         {"Characteristic discovery failed: The radio is busy."},
         retrying,
         {}},
        {"a characteristic missing",
         true,
         connectsByItselfAfter([](Phone& phone) {
             phone.missingCharacteristics = {OrbinexProtocol::keyboardCharacteristicUUID};
         }),
         {"Update required"},
         waiting,
         {{"Update Required",
           "Studio iPhone is running a different version of Orbinex. Update Orbinex on both your iPhone and "
           "Mac to the latest version."}}},
        {"device information unreadable",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.infoStep.error = radioError; }),
         {"Couldn't read device info: The radio is busy."},
         retrying,
         {}},
        {"device information malformed",
         false,
         userConnectsAfter([](Phone& phone) { phone.infoValue = Bytes(16, 2); }),
         {"Invalid device info"},
         searching,
         {}},
        {"older phone",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.info.protocolVersion = 1; }),
         {"Version mismatch"},
         waiting,
         {{"Update Required",
           "Studio iPhone has an older version of Orbinex. Update Orbinex on your iPhone to continue."}}},
        {"newer phone",
         false,
         userConnectsAfter([](Phone& phone) { phone.info.protocolVersion = 3; }),
         {"Version mismatch"},
         searching,
         {{"Update Required",
           "Studio iPhone has a newer version of Orbinex. Update Orbinex on this Mac to continue."}}},
        {"subscription error",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.subscribeStep.error = radioError; }),
         {"Subscription failed: The radio is busy."},
         retrying,
         {}},
        pairingFailsWhileReading(5),
        pairingFailsWhileReading(12),
        pairingFailsWhileReading(15),
        {"pairing failure while subscribing",
         false,
         userConnectsAfter([](Phone& phone) {
             phone.subscribeStep.error = BluetoothError{
                 BluetoothError::Kind::framework, BluetoothError::encryptionTimedOut, "Framework error."};
         }),
         {"Pairing not completed"},
         waiting,
         {pairingFailed}},
        {"another attribute error is no pairing failure",
         true,
         connectsByItselfAfter([](Phone& phone) { phone.infoStep.error = attributeError(14); }),
         {"Couldn't read device info: Attribute error."},
         retrying,
         {}},
        {"user's handshake breaks off",
         false,
         [](World& world, Phone& phone) {
             phone.infoStep.isAnswered = false;
             userConnects(world, phone);
             phone.dropLink();
             world.run(0s);
         },
         {securing},
         searching,
         {pairingFailed}},
        {"automatic handshake breaks off",
         true,
         [](World& world, Phone& phone) {
             phone.infoStep.isAnswered = false;
             world.run(600ms);
             phone.dropLink();
             world.run(0s);
         },
         {securing},
         retrying,
         {}},
        {"user disconnects",
         false,
         [](World& world, Phone& phone) {
             userConnects(world, phone);
             world.link.disconnect();
             world.run(100ms);
         },
         {connected},
         "Disconnected from Studio iPhone",
         {}},
        {"user cancels an attempt",
         false,
         [](World& world, Phone& phone) {
             phone.connectStep.isAnswered = false;
             userConnects(world, phone);
             world.link.cancelConnectionAttempt();
         },
         {"Connecting to Studio iPhone…"},
         "Connection cancelled",
         {}},
        {"user cancels a handshake",
         false,
         [](World& world, Phone& phone) {
             phone.infoStep.isAnswered = false;
             userConnects(world, phone);
             world.link.cancelConnectionAttempt();
         },
         {securing},
         "Connection cancelled",
         {}},
        {"phone asks to disconnect",
         false,
         [](World& world, Phone& phone) {
             userConnects(world, phone);
             phone.setAdvertising(false);
             phone.send(ControlMessage{ControlMessage::DisconnectRequest{}});
             world.run(0s);
         },
         {connected},
         "Studio iPhone disconnected",
         {}},
        {"phone withdraws its service",
         false,
         [](World& world, Phone& phone) {
             userConnects(world, phone);
             phone.setAdvertising(false);
             phone.withdrawService();
             world.run(0s);
         },
         {connected},
         "Studio iPhone paused Orbinex",
         {}},
        {"connection lost",
         false,
         [](World& world, Phone& phone) {
             userConnects(world, phone);
             phone.setInRange(false);
             world.run(0s);
         },
         {connected, "Connection to Studio iPhone lost — reconnecting…"},
         waiting,
         {}},
        {"a phone nobody trusts is reached by itself",
         true,
         [](World& world, Phone& phone) {
             // The same peripheral now says that it is somebody else.
             phone.info = {2, World::otherDeviceID, "Stranger"};
             while (!world.sawLine("Stranger is waiting to be trusted") && world.queue.uptime() < 5s) {
                 world.run(1ms);
             }
         },
         {"Stranger is waiting to be trusted"},
         waiting,
         {}},
    });
}

}  // namespace
}  // namespace orbinex
