#pragma once

#include <cstdint>

#include "protocol/modifier_flags.h"

namespace orbinex {

/// The key and modifiers that give a character.
struct KeyMapping {
    /// A macOS virtual key code.
    std::uint16_t keycode = 0;
    /// None, shift, option or both.
    ModifierFlags modifiers;
    friend bool operator==(const KeyMapping&, const KeyMapping&) = default;
};

}  // namespace orbinex
