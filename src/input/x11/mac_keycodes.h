#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orbinex {

/// The key of a PC keyboard that stands where a macOS virtual key code's key stands, or does its work.
struct PCKey {
    /// The key's name in the server's keyboard description, such as "AC01" for the first letter of the middle
    /// row. Names tell places, not letters.
    std::string_view xkbName;
    /// Its number in the kernel's input layer (linux/input-event-codes.h).
    std::uint8_t evdevCode = 0;
};

/// All macOS virtual key codes that have a key are below this.
inline constexpr std::uint16_t macKeycodeLimit = 128;

/// Nothing for codes without a key there, such as fn (63), which PC keyboards keep to themselves.
std::optional<PCKey> pcKey(std::uint16_t macKeycode);

/// The keys that are modifiers, whatever the layout.
enum class ModifierKey {
    leftShift,
    rightShift,
    leftControl,
    rightControl,
    leftOption,
    rightOption,
    leftCommand,
    rightCommand
};
std::optional<ModifierKey> modifierKey(std::uint16_t macKeycode);

}  // namespace orbinex
