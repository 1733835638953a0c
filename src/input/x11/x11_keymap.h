#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "input/x11/mac_keycodes.h"
#include "input/x11/x11_connection.h"

struct xkb_keymap;
struct xkb_state;

namespace orbinex {

/// A number of a key in the X server, 8 to 255; 0 means none.
using XKeycode = std::uint8_t;
/// What a key means; 0 means nothing (NoSymbol).
using XKeysym = std::uint32_t;
/// A set of real modifiers as bits: Shift 1, Lock 2, Control 4, Mod1 8 to Mod5 128.
using XModifiers = std::uint8_t;

inline constexpr XModifiers xShiftModifier = 1;
inline constexpr XModifiers xLockModifier = 2;

/// The keysym of a character: Latin-1 as itself, the rest in the range that X sets aside for Unicode.
XKeysym keysymOfScalar(char32_t scalar);

/// The server's keyboard description as it was when it was read. Groups are layouts, counted from 0.
class X11Keymap {
  public:
    /// Several round trips, about a millisecond; nothing when the server does not answer.
    static std::optional<X11Keymap> read(X11Connection& connection);

    /// The key at this place, by its name or, where the names are unknown, by its number.
    [[nodiscard]] XKeycode keycode(const PCKey& key) const;
    /// True for the keys that some key of the phone stands for.
    [[nodiscard]] bool hasPlace(XKeycode keycode) const { return places_.test(keycode); }
    /// A key that without modifiers gives this keysym and acts as a modifier.
    [[nodiscard]] XKeycode modifierKeycode(XKeysym keysym, unsigned group) const;
    /// The modifiers that the key switches on while it is down.
    [[nodiscard]] XModifiers modifiersOf(XKeycode keycode) const { return modifierMap_[keycode]; }
    /// The modifier that Num Lock switches, or none.
    [[nodiscard]] XModifiers numLock() const { return numLock_; }

    /// What the key gives with these modifiers.
    [[nodiscard]] XKeysym keysym(XKeycode keycode, unsigned group, XModifiers modifiers) const;
    /// The text of the same, UTF-8; empty for keys without text.
    [[nodiscard]] std::string text(XKeycode keycode, unsigned group, XModifiers modifiers) const;

    struct CharacterKey {
        XKeycode keycode = 0;
        /// Some of Shift and the modifier of the third level.
        XModifiers modifiers = 0;
    };
    /// The key that gives the character in this group, keypad left out; nothing when there is none.
    [[nodiscard]] std::optional<CharacterKey> find(char32_t scalar, unsigned group) const;

    [[nodiscard]] unsigned groupCount() const;
    /// Empty for a group without a name.
    [[nodiscard]] std::string groupName(unsigned group) const;

    /// The only keysym of the key in all groups and levels: 0 for a key without any, nothing for a key with
    /// several.
    [[nodiscard]] std::optional<XKeysym> onlyKeysym(XKeycode keycode) const;
    [[nodiscard]] XKeycode firstKeycode() const { return firstKeycode_; }
    [[nodiscard]] XKeycode lastKeycode() const { return lastKeycode_; }

  private:
    X11Keymap() = default;
    using CharacterKeys = std::unordered_map<char32_t, CharacterKey>;
    [[nodiscard]] CharacterKeys characterKeys(unsigned group) const;
    void readModifierMap(X11Connection& connection);

    std::shared_ptr<xkb_keymap> keymap_;
    std::shared_ptr<xkb_state> state_;
    std::array<XModifiers, 256> modifierMap_{};
    XModifiers numLock_ = 0;
    std::bitset<256> places_;
    XKeycode firstKeycode_ = 8;
    XKeycode lastKeycode_ = 255;
    /// By group; filled when a group is first asked for.
    mutable std::unordered_map<unsigned, CharacterKeys> characterKeys_;
};

}  // namespace orbinex
