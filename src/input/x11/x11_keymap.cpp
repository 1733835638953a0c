#include "input/x11/x11_keymap.h"

#include <algorithm>
#include <bit>

#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace orbinex {

namespace {

/// Kernel key numbers are offset by this in X.
constexpr int evdevOffset = 8;
constexpr XKeysym unicodeKeysyms = 0x01000000;

bool isKeypadKeysym(XKeysym keysym) {
    return keysym >= XK_KP_Space && keysym <= XK_KP_Equal;
}

}  // namespace

XKeysym keysymOfScalar(char32_t scalar) {
    switch (scalar) {
        case 0x08: return XK_BackSpace;
        case 0x09: return XK_Tab;
        case 0x0A:
        case 0x0D: return XK_Return;
        case 0x1B: return XK_Escape;
        case 0x7F: return XK_Delete;
        default: break;
    }
    if (scalar < 0x20 || (scalar >= 0x80 && scalar < 0xA0) || scalar > 0x10FFFF) return NoSymbol;
    return scalar < 0x100 ? scalar : unicodeKeysyms | scalar;
}

std::optional<X11Keymap> X11Keymap::read(X11Connection& connection) {
    if (!connection.isAlive()) return std::nullopt;
    xcb_connection_t* const xcb = connection.xcb();
    if (!xkb_x11_setup_xkb_extension(xcb, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                     XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr,
                                     nullptr)) {
        return std::nullopt;
    }
    const std::unique_ptr<xkb_context, void (*)(xkb_context*)> context(
        xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES), xkb_context_unref);
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(xcb);
    if (!context || device < 0) return std::nullopt;

    X11Keymap result;
    result.keymap_.reset(
        xkb_x11_keymap_new_from_device(context.get(), xcb, device, XKB_KEYMAP_COMPILE_NO_FLAGS),
        xkb_keymap_unref);
    if (!result.keymap_) return std::nullopt;
    result.state_.reset(xkb_state_new(result.keymap_.get()), xkb_state_unref);
    if (!result.state_) return std::nullopt;
    result.readModifierMap(connection);
    for (std::uint16_t code = 0; code < macKeycodeLimit; ++code) {
        if (const auto key = pcKey(code)) result.places_.set(result.keycode(*key));
    }
    return result;
}

void X11Keymap::readModifierMap(X11Connection& connection) {
    int first = 0;
    int last = 0;
    XDisplayKeycodes(connection.display(), &first, &last);
    firstKeycode_ = static_cast<XKeycode>(std::clamp(first, 8, 255));
    lastKeycode_ = static_cast<XKeycode>(std::clamp(last, 8, 255));

    if (XModifierKeymap* const map = XGetModifierMapping(connection.display())) {
        for (int i = 0; i < 8 * map->max_keypermod; ++i) {
            const auto modifier = static_cast<XModifiers>(1 << (i / map->max_keypermod));
            if (map->modifiermap[i] != 0) modifierMap_[map->modifiermap[i]] |= modifier;
        }
        XFreeModifiermap(map);
    }
    const XKeycode numLockKey = modifierKeycode(XK_Num_Lock, 0);
    numLock_ = numLockKey != 0 ? modifierMap_[numLockKey] : XModifiers{0};
}

XKeycode X11Keymap::keycode(const PCKey& key) const {
    const auto named = xkb_keymap_key_by_name(keymap_.get(), std::string(key.xkbName).c_str());
    if (named != XKB_KEYCODE_INVALID && named >= firstKeycode_ && named <= lastKeycode_) {
        return static_cast<XKeycode>(named);
    }
    // A description without even a name for the space bar has no names at all.
    if (xkb_keymap_key_by_name(keymap_.get(), "SPCE") != XKB_KEYCODE_INVALID) return 0;
    const int numbered = key.evdevCode + evdevOffset;
    return numbered <= lastKeycode_ ? static_cast<XKeycode>(numbered) : XKeycode{0};
}

XKeycode X11Keymap::modifierKeycode(XKeysym keysym, unsigned group) const {
    for (unsigned code = firstKeycode_; code <= lastKeycode_; ++code) {
        const auto keycode = static_cast<XKeycode>(code);
        if (modifierMap_[keycode] != 0 && this->keysym(keycode, group, 0) == keysym) return keycode;
    }
    return 0;
}

XKeysym X11Keymap::keysym(XKeycode keycode, unsigned group, XModifiers modifiers) const {
    xkb_state_update_mask(state_.get(), modifiers, 0, 0, 0, 0, group);
    return xkb_state_key_get_one_sym(state_.get(), keycode);
}

std::string X11Keymap::text(XKeycode keycode, unsigned group, XModifiers modifiers) const {
    xkb_state_update_mask(state_.get(), modifiers, 0, 0, 0, 0, group);
    const int size = xkb_state_key_get_utf8(state_.get(), keycode, nullptr, 0);
    if (size <= 0) return {};
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    xkb_state_key_get_utf8(state_.get(), keycode, text.data(), text.size());
    text.resize(static_cast<std::size_t>(size));
    return text;
}

std::optional<X11Keymap::CharacterKey> X11Keymap::find(char32_t scalar, unsigned group) const {
    auto keys = characterKeys_.find(group);
    if (keys == characterKeys_.end()) keys = characterKeys_.emplace(group, characterKeys(group)).first;
    const auto it = keys->second.find(scalar);
    return it == keys->second.end() ? std::nullopt : std::optional(it->second);
}

X11Keymap::CharacterKeys X11Keymap::characterKeys(unsigned group) const {
    const XKeycode thirdLevelKey = modifierKeycode(XK_ISO_Level3_Shift, group);
    const XModifiers thirdLevel = thirdLevelKey != 0 ? modifierMap_[thirdLevelKey] : XModifiers{0};
    CharacterKeys keys;
    for (const XModifiers modifiers :
         {XModifiers{0}, xShiftModifier, thirdLevel, static_cast<XModifiers>(thirdLevel | xShiftModifier)}) {
        for (unsigned code = firstKeycode_; code <= lastKeycode_; ++code) {
            const auto keycode = static_cast<XKeycode>(code);
            const XKeysym symbol = keysym(keycode, group, modifiers);
            const char32_t scalar = xkb_keysym_to_utf32(symbol);
            // A key without a place that has just one symbol may be a spare one that somebody borrows at
            // present.
            const bool isLasting = hasPlace(keycode) || !onlyKeysym(keycode);
            if (scalar == 0 || isKeypadKeysym(symbol) || !isLasting) continue;
            keys.try_emplace(scalar, CharacterKey{keycode, modifiers});
        }
    }
    return keys;
}

unsigned X11Keymap::groupCount() const {
    return xkb_keymap_num_layouts(keymap_.get());
}

std::string X11Keymap::groupName(unsigned group) const {
    const char* const name = xkb_keymap_layout_get_name(keymap_.get(), group);
    return name ? name : "";
}

std::optional<XKeysym> X11Keymap::onlyKeysym(XKeycode keycode) const {
    XKeysym only = NoSymbol;
    const unsigned groups = xkb_keymap_num_layouts_for_key(keymap_.get(), keycode);
    for (unsigned group = 0; group < groups; ++group) {
        const unsigned levels = xkb_keymap_num_levels_for_key(keymap_.get(), keycode, group);
        for (unsigned level = 0; level < levels; ++level) {
            const xkb_keysym_t* symbols = nullptr;
            const int count =
                xkb_keymap_key_get_syms_by_level(keymap_.get(), keycode, group, level, &symbols);
            for (int i = 0; i < count; ++i) {
                if (symbols[i] == NoSymbol || symbols[i] == only) continue;
                if (only != NoSymbol) return std::nullopt;
                only = symbols[i];
            }
        }
    }
    return only;
}

}  // namespace orbinex
