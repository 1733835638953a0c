#pragma once

#include <optional>
#include <set>
#include <string>

#include "base/uuid.h"
#include "link/bluetooth_central.h"
#include "protocol/device_info.h"

namespace orbinex {

/// The link's state as a person is shown it.
enum class LinkPhase {
    bluetoothUnavailable,  ///< the central is not powered on
    searching,             ///< no attempt and no session
    connecting,            ///< a connect request is outstanding
    securing,              ///< connected, the handshake is running
    connected,             ///< input and editor traffic flow
};

/// Why a connection is being made.
enum class Intent {
    user,       ///< the user asked for it
    automatic,  ///< a trusted iPhone was discovered
    pending,    ///< a background request to a trusted iPhone was answered
};

/// The iPhone that is being connected or is connected.
struct ActiveDevice {
    UUID peripheralID;
    std::optional<UUID> deviceID;
    std::string name;

    friend bool operator==(const ActiveDevice&, const ActiveDevice&) = default;
};

/// A message box that waits to be shown.
struct BLEAlert {
    /// New for every alert, so that the same text twice is two alerts.
    UUID id;
    std::string title;
    std::string message;

    friend bool operator==(const BLEAlert&, const BLEAlert&) = default;
};

/// A connect request that has not been answered yet.
struct ConnectionAttempt {
    UUID id;
    Intent intent;
};

/// A connection with an iPhone, from the moment the link stands.
struct Session {
    Peripheral peripheral;
    Intent intent;
    std::optional<Characteristic> mouse;
    std::optional<Characteristic> keyboard;
    std::optional<Characteristic> info;
    std::optional<Characteristic> control;
    /// Set once the iPhone has told who it is and was accepted.
    std::optional<DeviceInfo> deviceInfo;
    /// Characteristics for which notifications are on.
    std::set<UUID> notifying;
};

}  // namespace orbinex
