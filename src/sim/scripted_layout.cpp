#include "sim/scripted_layout.h"

#include <string_view>

namespace orbinex {

ScriptedLayout& ScriptedLayout::key(std::uint16_t keycode, ModifierFlags modifiers, std::string text) {
    keys[{keycode, modifiers.rawValue}] = {KeyTranslation::Kind::text, std::move(text)};
    return *this;
}

ScriptedLayout& ScriptedLayout::deadKey(std::uint16_t keycode, ModifierFlags modifiers) {
    keys[{keycode, modifiers.rawValue}] = {KeyTranslation::Kind::deadKey, {}};
    return *this;
}

KeyboardLayout ScriptedLayout::layout() const {
    return {name, [keys = keys](std::uint16_t keycode, ModifierFlags modifiers) {
                const auto it = keys.find({keycode, modifiers.rawValue});
                return it == keys.end() ? KeyTranslation{} : it->second;
            }};
}

ScriptedLayout ScriptedLayout::us() {
    // By key code from 0; a blank is a key that this layout leaves out.
    constexpr std::string_view plain = "asdfhgzxcv bqweryt123465=97-80]ou[ip lj'k;\\,/nm.";
    constexpr std::string_view shifted = "ASDFHGZXCV BQWERYT!@#$^%+(&_*)}OU{IP LJ\"K:|<?NM>";
    ScriptedLayout us{"U.S.", {}};
    for (std::size_t i = 0; i < plain.size(); ++i) {
        if (plain[i] == ' ') continue;
        const auto keycode = static_cast<std::uint16_t>(i);
        us.key(keycode, {}, std::string(1, plain[i]));
        us.key(keycode, ModifierFlags::shift, std::string(1, shifted[i]));
    }
    us.key(49, {}, " ").key(50, {}, "`").key(50, ModifierFlags::shift, "~");
    us.key(0, ModifierFlags::option, "å").deadKey(14, ModifierFlags::option);
    return us;
}

void ScriptedLayoutSource::select(std::optional<ScriptedLayout> layout) {
    current_ = std::move(layout);
    changed_.emit();
}

std::optional<KeyboardLayout> ScriptedLayoutSource::currentLayout() {
    return current_ ? std::optional(current_->layout()) : std::nullopt;
}

std::optional<KeyboardLayout> ScriptedLayoutSource::asciiCapableLayout() {
    return asciiCapable ? std::optional(asciiCapable->layout()) : std::nullopt;
}

Subscription ScriptedLayoutSource::onLayoutChange(std::function<void()> observer) {
    return changed_.subscribe(std::move(observer));
}

}  // namespace orbinex
