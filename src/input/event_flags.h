#pragma once

#include <cstdint>

#include "protocol/modifier_flags.h"

namespace orbinex {

/// The modifiers that a key event carries, in the bit positions of the phone's system (Quartz event flags).
struct EventFlags {
    std::uint32_t rawValue = 0;

    static const EventFlags shift;
    static const EventFlags control;
    static const EventFlags option;
    static const EventFlags command;

    [[nodiscard]] constexpr bool contains(EventFlags other) const {
        return (rawValue & other.rawValue) == other.rawValue;
    }
    friend constexpr EventFlags operator|(EventFlags a, EventFlags b) { return {a.rawValue | b.rawValue}; }
    friend constexpr bool operator==(EventFlags, EventFlags) = default;
};

inline constexpr EventFlags EventFlags::shift{0x20000};
inline constexpr EventFlags EventFlags::control{0x40000};
inline constexpr EventFlags EventFlags::option{0x80000};
inline constexpr EventFlags EventFlags::command{0x100000};

/// The flags of a packet's modifiers; bits that have no meaning contribute nothing.
constexpr EventFlags eventFlags(ModifierFlags modifiers) {
    EventFlags flags;
    if (modifiers.contains(ModifierFlags::shift)) flags = flags | EventFlags::shift;
    if (modifiers.contains(ModifierFlags::control)) flags = flags | EventFlags::control;
    if (modifiers.contains(ModifierFlags::option)) flags = flags | EventFlags::option;
    if (modifiers.contains(ModifierFlags::command)) flags = flags | EventFlags::command;
    return flags;
}

}  // namespace orbinex
