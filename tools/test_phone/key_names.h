#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "protocol/modifier_flags.h"

namespace orbinex::test_phone {

/// A macOS virtual key code, given as a number or by the key's name: a letter, "return", "left", "f5". Keys
/// are where a US keyboard has them.
std::optional<std::uint16_t> keycodeNamed(std::string_view nameOrCode);

/// "shift", "control", "option" or "command".
std::optional<ModifierFlags> modifierNamed(std::string_view name);

}  // namespace orbinex::test_phone
