#include "link/link_texts.h"

#include <cmath>
#include <utility>

#include "link/pairing_error.h"
#include "protocol/device_info.h"

namespace orbinex::LinkText {

namespace {

constexpr const char* updateTitle = "Update Required";

BLEAlert makeAlert(std::string title, std::string message) {
    return BLEAlert{UUID::random(), std::move(title), std::move(message)};
}

}  // namespace

std::string unavailable(BluetoothState state) {
    switch (state) {
        case BluetoothState::resetting: return "Bluetooth is restarting…";
        case BluetoothState::unsupported: return "This Mac doesn't support Bluetooth Low Energy.";
        case BluetoothState::unauthorized:
            return "Orbinex needs Bluetooth access. Allow it in System Settings → Privacy & Security → "
                   "Bluetooth.";
        case BluetoothState::poweredOff:
            return "Bluetooth is turned off. Turn it on in Control Center or System Settings.";
        case BluetoothState::unknown:
        case BluetoothState::poweredOn: break;
    }
    return "Starting Bluetooth…";
}

std::string searching(bool anyTrusted) {
    return anyTrusted ? "Waiting for a trusted iPhone…" : "Searching for iPhones running Orbinex…";
}

std::string lookingFor(const std::string& name) {
    return "Looking for " + name + "…";
}
std::string connecting(const std::string& name) {
    return "Connecting to " + name + "…";
}
std::string securing(const std::string& name) {
    return "Securing connection with " + name + "…";
}
std::string connected(const std::string& name) {
    return "Connected to " + name;
}
std::string reconnecting(Seconds delay) {
    return "Reconnecting in " + std::to_string(std::llround(delay.count())) + "s…";
}
std::string disconnectedFrom(const std::string& name) {
    return "Disconnected from " + name;
}
std::string cancelled() {
    return "Connection cancelled";
}
std::string remoteDisconnected(const std::string& name) {
    return name + " disconnected";
}
std::string paused(const std::string& name) {
    return name + " paused Orbinex";
}
std::string connectionLost(const std::string& name) {
    return "Connection to " + name + " lost — reconnecting…";
}
std::string waitingToBeTrusted(const std::string& name) {
    return name + " is waiting to be trusted";
}
std::string handshakeTimedOut() {
    return "Secure handshake timed out";
}
std::string serviceDiscoveryFailed(const BluetoothError& error) {
    return "Service discovery failed: " + error.description;
}
std::string serviceMissing() {
    return "Orbinex isn't active on the iPhone";
}
std::string characteristicDiscoveryFailed(const BluetoothError& error) {
    return "Characteristic discovery failed: " + error.description;
}
std::string updateRequired() {
    return "Update required";
}
std::string deviceInfoUnreadable(const BluetoothError& error) {
    return "Couldn't read device info: " + error.description;
}
std::string deviceInfoInvalid() {
    return "Invalid device info";
}
std::string versionMismatch() {
    return "Version mismatch";
}
std::string subscriptionFailed(const BluetoothError& error) {
    return "Subscription failed: " + error.description;
}
std::string pairingNotCompleted() {
    return "Pairing not completed";
}

BLEAlert notNearbyAlert(const std::string& name) {
    return makeAlert(
        name + " Isn't Nearby",
        "Open Orbinex on your iPhone, keep it unlocked, and make sure it's within Bluetooth range. "
        "It will connect automatically.");
}

BLEAlert unreachableAlert(const std::string& name) {
    return makeAlert(
        "Couldn't Reach " + name,
        "Make sure Orbinex is open on your iPhone and the phone is unlocked and nearby, then try "
        "again.");
}

BLEAlert connectFailedAlert(const std::string& name, const BluetoothError* error) {
    return makeAlert("Couldn't Connect to " + name, error ? error->description : "Please try again.");
}

BLEAlert handshakeTimedOutAlert(const std::string& name) {
    return makeAlert(
        "Connection Timed Out",
        "The secure handshake with " + name +
            " didn't finish. If a pairing request appeared, accept it on both devices, then try again.");
}

BLEAlert characteristicMissingAlert(const std::string& name) {
    return makeAlert(updateTitle, name +
                                      " is running a different version of Orbinex. Update Orbinex on both "
                                      "your iPhone and Mac to the latest version.");
}

BLEAlert versionAlert(const std::string& name, std::uint8_t version) {
    const bool isOlder = compareVersion(version) == VersionMatch::peerOlder;
    return makeAlert(
        updateTitle,
        name + (isOlder ? " has an older version of Orbinex. Update Orbinex on your iPhone to continue."
                        : " has a newer version of Orbinex. Update Orbinex on this Mac to continue."));
}

BLEAlert pairingAlert(const std::string& name, const BluetoothError* error) {
    if (isPeerRemovedPairing(error)) {
        return makeAlert(
            "Pair " + name + " Again",
            name + " no longer recognizes this Mac. Open System Settings → Bluetooth on this Mac, remove " +
                name + " from My Devices, then click Trust & Connect again.");
    }
    return makeAlert("Pairing Not Completed",
                     "Orbinex needs a secure Bluetooth pairing with " + name +
                         ". Click Connect and accept the pairing request on both your Mac and iPhone.");
}

}  // namespace orbinex::LinkText
