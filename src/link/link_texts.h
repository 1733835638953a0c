#pragma once

#include <cstdint>
#include <string>

#include "base/date.h"
#include "link/bluetooth_central.h"
#include "link/link_model.h"

/// Every sentence with which the link speaks to a person, each written once.
namespace orbinex::LinkText {

// Names that stand in where none is known.
inline constexpr const char* someIPhone = "iPhone";
inline constexpr const char* yourIPhone = "your iPhone";
inline constexpr const char* theIPhone = "the iPhone";

// Status lines.
/// For every state but poweredOn.
std::string unavailable(BluetoothState state);
std::string searching(bool anyTrusted);
std::string lookingFor(const std::string& name);
std::string connecting(const std::string& name);
std::string securing(const std::string& name);
std::string connected(const std::string& name);
/// The delay is rounded to whole seconds, halves away from zero.
std::string reconnecting(Seconds delay);
std::string disconnectedFrom(const std::string& name);
std::string cancelled();
std::string remoteDisconnected(const std::string& name);
std::string paused(const std::string& name);
std::string connectionLost(const std::string& name);
std::string waitingToBeTrusted(const std::string& name);
std::string handshakeTimedOut();
std::string serviceDiscoveryFailed(const BluetoothError& error);
std::string serviceMissing();
std::string characteristicDiscoveryFailed(const BluetoothError& error);
std::string updateRequired();
std::string deviceInfoUnreadable(const BluetoothError& error);
std::string deviceInfoInvalid();
std::string versionMismatch();
std::string subscriptionFailed(const BluetoothError& error);
std::string pairingNotCompleted();

// Alerts, each with a new id.
BLEAlert notNearbyAlert(const std::string& name);
BLEAlert unreachableAlert(const std::string& name);
/// Without an error the message asks to try again.
BLEAlert connectFailedAlert(const std::string& name, const BluetoothError* error);
BLEAlert handshakeTimedOutAlert(const std::string& name);
BLEAlert characteristicMissingAlert(const std::string& name);
/// For a protocol version that is not ours.
BLEAlert versionAlert(const std::string& name, std::uint8_t version);
BLEAlert pairingAlert(const std::string& name, const BluetoothError* error);

}  // namespace orbinex::LinkText
