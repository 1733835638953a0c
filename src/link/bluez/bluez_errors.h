#pragma once

#include <QString>
#include <chrono>
#include <optional>

#include "link/bluetooth_central.h"

namespace orbinex {

/// An answer of bluetoothd that is an error. Its name often is the unspecific org.bluez.Error.Failed, and
/// only the text tells more.
struct BluezError {
    QString name;
    QString text;
};

/// Why a Connect call failed.
enum class ConnectFailure {
    /// Out of range, busy, cancelled, off: the wish for a connection stays.
    transient,
    /// Refused at once by a device that is paired here: it may have lost its half of the pairing. A weak
    /// signal looks the same, so once is not enough.
    perhapsForgotten,
    /// The wish has failed.
    final,
};

/// How soon a failure is "at once", while a device out of range takes BlueZ about 40 s to give up on.
inline constexpr std::chrono::seconds promptFailure{3};
/// So many failures `perhapsForgotten` in a row mean that the pairing is forgotten.
inline constexpr int failuresOfForgottenPairing = 3;

ConnectFailure connectFailure(const BluezError& error, bool isBonded, std::chrono::nanoseconds elapsed);
/// The code in "Operation failed with ATT error: 0x0e"; nothing when the text has none.
std::optional<int> attributeCode(const QString& text);
/// What the link is told of a device that has forgotten the pairing.
BluetoothError forgottenPairing(const BluezError& error);
/// Of a failed read, write or subscription.
BluetoothError attributeError(const BluezError& error, bool isBonded);
/// Of a failed Pair call; nothing when the device turns out to be paired.
std::optional<BluetoothError> pairingError(const BluezError& error);
/// For an operation that asks for a secure pairing that there is not.
BluetoothError notPaired();
/// For one that nothing is decided by.
BluetoothError plainError(const BluezError& error);

}  // namespace orbinex
