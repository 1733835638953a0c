#pragma once

#include <chrono>

namespace orbinex {

/// How long a device whose connection this side has ended is not asked again by itself: one that is turned
/// away must not be hammered.
inline constexpr std::chrono::seconds restAfterDrop{3};
/// The same after a request that failed.
inline constexpr std::chrono::seconds restAfterFailure{1};
/// And between two calls that are to end the same connection.
inline constexpr std::chrono::seconds restAfterDisconnect{5};

/// A connection to a bonded device is proven when it has lasted so long, if not before by its services. One
/// that cannot be secured ends by itself within some four seconds; told of earlier, it would look like a
/// pairing that was refused.
inline constexpr std::chrono::seconds proofTime{6};

/// How things stand between this computer and one device.
struct ConnectFacts {
    bool isWanted = false;     ///< a connect request is open
    bool isUsersWish = false;  ///< and a person waits for it
    bool isKnown = false;      ///< BlueZ has an object for the device
    bool isInSight = false;    ///< it was heard of late
    bool isConnected = false;  ///< says BlueZ
    bool isProven = true;      ///< and it will not end at once, as that of a forgotten pairing does
    bool isReported = false;   ///< the link was told of the connection
    bool isPairing = false;
    bool isConnecting = false;     ///< a Connect call is under way
    bool isCancelling = false;     ///< whatever stands is to go
    bool isDisconnecting = false;  ///< a Disconnect call is under way
    std::chrono::nanoseconds now{0};
    std::chrono::nanoseconds restsUntil{0};  ///< no call before this
};

enum class ConnectStep {
    none,
    connect,
    disconnect,
    reportConnected,
    reportDisconnected,
    endCancelling,  ///< nothing stands any more
    waitForRest,    ///< ask again at `restsUntil`
    waitForProof,   ///< ask again when the connection has lasted for `proofTime`
};

/// What to do next; after doing it, ask again.
ConnectStep nextConnectStep(const ConnectFacts& facts);

}  // namespace orbinex
