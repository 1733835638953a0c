#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "base/bytes.h"
#include "protocol/modifier_flags.h"

namespace orbinex {

enum class MouseButton { left, right };
enum class KeyState { pressed, released };

/// One piece of input from the iPhone: one value of the mouse or keyboard characteristic. Byte 0 is the type;
/// numbers are little-endian, floats IEEE 754 binary32.
struct DecodedPacket {
    /// Relative pointer motion in points; both finite.
    struct MouseMove {
        float deltaX = 0;
        float deltaY = 0;
        friend bool operator==(const MouseMove&, const MouseMove&) = default;
    };
    /// A complete click, press and release.
    struct MouseClick {
        MouseButton button = MouseButton::left;
        /// 1 to 3.
        std::uint8_t tapCount = 1;
        friend bool operator==(const MouseClick&, const MouseClick&) = default;
    };
    /// Relative scroll amounts as sent; both finite.
    struct MouseScroll {
        float deltaX = 0;
        float deltaY = 0;
        friend bool operator==(const MouseScroll&, const MouseScroll&) = default;
    };
    /// One transition of a key.
    struct KeyStroke {
        /// A macOS virtual key code.
        std::uint16_t keycode = 0;
        ModifierFlags modifiers;
        KeyState state = KeyState::pressed;
        friend bool operator==(const KeyStroke&, const KeyStroke&) = default;
    };
    /// A run of text to type.
    struct Text {
        /// Valid UTF-8, never empty.
        std::string text;
        ModifierFlags modifiers;
        /// The key to press for text that no key types, if there is one. 0xFFFF cannot be sent: it stands for
        /// none.
        std::optional<std::uint16_t> fallbackKeycode;
        friend bool operator==(const Text&, const Text&) = default;
    };
    /// One transition of a mouse button, for press-and-hold and dragging.
    struct MouseButtonChange {
        MouseButton button = MouseButton::left;
        KeyState state = KeyState::pressed;
        friend bool operator==(const MouseButtonChange&, const MouseButtonChange&) = default;
    };

    using Value = std::variant<MouseMove, MouseClick, MouseScroll, KeyStroke, Text, MouseButtonChange>;
    Value value;

    /// Nothing for an empty value, an unknown type, too few bytes, a float that is not finite, a button or
    /// state out of range, and text that is empty or not UTF-8. A tap count of 0 becomes 1, one above 3
    /// becomes 3. Bytes beyond a packet's length are ignored. Allocates nothing but the text.
    static std::optional<DecodedPacket> decode(ByteView bytes);
    /// The packet as the iPhone sends it. Contents outside the ranges above are written as they are.
    [[nodiscard]] Bytes encode() const;

    friend bool operator==(const DecodedPacket&, const DecodedPacket&) = default;
};

}  // namespace orbinex
