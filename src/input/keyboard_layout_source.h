#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/signal.h"
#include "protocol/modifier_flags.h"

namespace orbinex {

/// What one key gives on a layout.
struct KeyTranslation {
    enum class Kind {
        nothing,
        /// The key only prepares the next one, such as an accent to come.
        deadKey,
        text,
    };
    Kind kind = Kind::nothing;
    /// UTF-8; empty unless the kind is text.
    std::string text;
    friend bool operator==(const KeyTranslation&, const KeyTranslation&) = default;
};

struct KeyboardLayout {
    /// For people; empty when the layout has no name.
    std::string name;
    /// What the key with this macOS virtual key code gives with these modifiers (shift and option only), no
    /// dead key pending. Nothing for keys that the layout does not have.
    std::function<KeyTranslation(std::uint16_t keycode, ModifierFlags modifiers)> translate;
};

/// Tells what is written on the keys at present. Main thread only.
class KeyboardLayoutSource {
  public:
    KeyboardLayoutSource() = default;
    KeyboardLayoutSource(const KeyboardLayoutSource&) = delete;
    KeyboardLayoutSource& operator=(const KeyboardLayoutSource&) = delete;
    virtual ~KeyboardLayoutSource() = default;

    /// The layout that is selected, or nothing when its keys cannot be translated.
    [[nodiscard]] virtual std::optional<KeyboardLayout> currentLayout() = 0;
    /// A layout with the Latin letters, for when there is no current one.
    [[nodiscard]] virtual std::optional<KeyboardLayout> asciiCapableLayout() = 0;
    /// Calls the observer after another layout was selected.
    [[nodiscard]] virtual Subscription onLayoutChange(std::function<void()> observer) = 0;
};

}  // namespace orbinex
