#pragma once

#include <string_view>

#include "link/bluetooth_central.h"

namespace orbinex {

/// What stands for a panel of the desktop's settings. A platform without such addresses opens its own panel
/// of that subject.
inline constexpr std::string_view accessibilitySettingsUrl =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
inline constexpr std::string_view bluetoothPrivacySettingsUrl =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Bluetooth";
inline constexpr std::string_view bluetoothSettingsUrl =
    "x-apple.systempreferences:com.apple.BluetoothSettings";

/// Where a person makes Bluetooth work again: who may use it, or whether it is on.
constexpr std::string_view bluetoothSettingsUrlFor(BluetoothState state) {
    return state == BluetoothState::unauthorized ? bluetoothPrivacySettingsUrl : bluetoothSettingsUrl;
}

}  // namespace orbinex
