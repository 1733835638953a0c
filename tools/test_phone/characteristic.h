#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/uuid.h"

namespace orbinex::test_phone {

/// The characteristics of the phone's service.
enum class Characteristic { mouse, keyboard, info, control };

inline constexpr std::array allCharacteristics{Characteristic::mouse, Characteristic::keyboard,
                                               Characteristic::info, Characteristic::control};

/// What a link must be before the device information may be read over it.
enum class InfoAccess {
    plain,
    /// Paired, if need be without anybody having compared digits.
    encrypted,
    /// Paired with digits that two people have compared.
    authenticated,
};

/// Its name in commands and events, and the last part of its object path.
std::string_view name(Characteristic characteristic);
std::optional<Characteristic> characteristicNamed(std::string_view name);
const UUID& uuid(Characteristic characteristic);
/// As org.bluez.GattCharacteristic1 names them.
std::vector<std::string> flags(Characteristic characteristic, InfoAccess infoAccess);

}  // namespace orbinex::test_phone
