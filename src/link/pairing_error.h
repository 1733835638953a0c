#pragma once

#include "link/bluetooth_central.h"

namespace orbinex {

/// True when the iPhone no longer has its half of the pairing. Null is no error.
inline bool isPeerRemovedPairing(const BluetoothError* error) {
    return error && error->kind == BluetoothError::Kind::framework &&
           error->code == BluetoothError::peerRemovedPairingInformation;
}

/// True when the operation failed for want of a secure pairing. Null is no error.
inline bool isPairingError(const BluetoothError* error) {
    if (!error) return false;
    switch (error->kind) {
        case BluetoothError::Kind::attribute:
            return error->code == BluetoothError::insufficientEncryption ||
                   error->code == BluetoothError::insufficientAuthentication ||
                   error->code == BluetoothError::insufficientEncryptionKeySize;
        case BluetoothError::Kind::framework:
            return error->code == BluetoothError::peerRemovedPairingInformation ||
                   error->code == BluetoothError::encryptionTimedOut;
        case BluetoothError::Kind::other: return false;
    }
    return false;
}

}  // namespace orbinex
