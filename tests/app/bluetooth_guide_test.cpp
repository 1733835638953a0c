// The guide tells of everything that the link says to a person.

#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "link/link_texts.h"
#include "protocol/device_info.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

std::string guide() {
    std::ifstream file(ORBINEX_BLUETOOTH_GUIDE);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(BluetoothGuide, explainsEveryStatusLineAndAlert) {
    const std::string name = "X";
    const BluetoothError error{BluetoothError::Kind::other, 0, "…"};
    const BluetoothError removed{BluetoothError::Kind::framework,
                                 BluetoothError::peerRemovedPairingInformation, ""};
    const std::string lines[] = {
        LinkText::unavailable(BluetoothState::unknown),
        LinkText::unavailable(BluetoothState::resetting),
        LinkText::unavailable(BluetoothState::unsupported),
        LinkText::unavailable(BluetoothState::unauthorized),
        LinkText::unavailable(BluetoothState::poweredOff),
        LinkText::searching(false),
        LinkText::searching(true),
        LinkText::lookingFor(name),
        LinkText::connecting(name),
        LinkText::securing(name),
        LinkText::connected(name),
        LinkText::disconnectedFrom(name),
        LinkText::cancelled(),
        LinkText::remoteDisconnected(name),
        LinkText::paused(name),
        LinkText::connectionLost(name),
        LinkText::waitingToBeTrusted(name),
        LinkText::handshakeTimedOut(),
        LinkText::serviceDiscoveryFailed(error),
        LinkText::serviceMissing(),
        LinkText::characteristicDiscoveryFailed(error),
        LinkText::updateRequired(),
        LinkText::deviceInfoUnreadable(error),
        LinkText::deviceInfoInvalid(),
        LinkText::versionMismatch(),
        LinkText::subscriptionFailed(error),
        LinkText::pairingNotCompleted(),
        LinkText::notNearbyAlert(name).title,
        LinkText::unreachableAlert(name).title,
        LinkText::connectFailedAlert(name, nullptr).title,
        LinkText::handshakeTimedOutAlert(name).title,
        LinkText::characteristicMissingAlert(name).title,
        LinkText::versionAlert(name, 1).title,
        LinkText::pairingAlert(name, &removed).title,
        LinkText::pairingAlert(name, nullptr).title,
    };
    const auto text = guide();
    for (const auto& line : lines) {
        EXPECT_NE(text.find("\n| " + line + " | "), std::string::npos) << line;
    }
    // The number is whatever it is.
    EXPECT_EQ(LinkText::reconnecting(4s), "Reconnecting in 4s…");
    EXPECT_NE(text.find("\n| Reconnecting in Ns… | "), std::string::npos);
}

}  // namespace
}  // namespace orbinex
