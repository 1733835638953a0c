#pragma once

#include <cstdint>

namespace orbinex {

/// A set of keyboard modifiers in one byte. Bits 4 to 7 have no meaning and are carried unchanged.
struct ModifierFlags {
    std::uint8_t rawValue = 0;

    static const ModifierFlags shift;
    static const ModifierFlags control;
    static const ModifierFlags option;
    static const ModifierFlags command;

    /// True when every flag of `other` is set here; always true for the empty set.
    [[nodiscard]] constexpr bool contains(ModifierFlags other) const {
        return (rawValue & other.rawValue) == other.rawValue;
    }
    [[nodiscard]] constexpr bool isEmpty() const { return rawValue == 0; }

    friend constexpr ModifierFlags operator|(ModifierFlags a, ModifierFlags b) {
        return {static_cast<std::uint8_t>(a.rawValue | b.rawValue)};
    }
    friend constexpr ModifierFlags operator&(ModifierFlags a, ModifierFlags b) {
        return {static_cast<std::uint8_t>(a.rawValue & b.rawValue)};
    }
    constexpr ModifierFlags& operator|=(ModifierFlags other) { return *this = *this | other; }

    friend constexpr bool operator==(ModifierFlags, ModifierFlags) = default;
};

inline constexpr ModifierFlags ModifierFlags::shift{0x01};
inline constexpr ModifierFlags ModifierFlags::control{0x02};
inline constexpr ModifierFlags ModifierFlags::option{0x04};
inline constexpr ModifierFlags ModifierFlags::command{0x08};

}  // namespace orbinex
