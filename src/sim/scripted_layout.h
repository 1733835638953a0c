#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "input/keyboard_layout_source.h"

namespace orbinex {

/// A keyboard layout written by hand: what each key gives, by key code and modifiers.
struct ScriptedLayout {
    using Key = std::pair<std::uint16_t, std::uint8_t>;
    std::string name;
    std::map<Key, KeyTranslation> keys;

    /// Sets what a key gives, UTF-8.
    ScriptedLayout& key(std::uint16_t keycode, ModifierFlags modifiers, std::string text);
    ScriptedLayout& deadKey(std::uint16_t keycode, ModifierFlags modifiers);
    [[nodiscard]] KeyboardLayout layout() const;

    /// The letters, digits, space and the commonest signs of the US layout; a-ring on option-A.
    static ScriptedLayout us();
};

/// A source whose selection is changed by hand.
class ScriptedLayoutSource final : public KeyboardLayoutSource {
  public:
    explicit ScriptedLayoutSource(std::optional<ScriptedLayout> current = ScriptedLayout::us())
        : current_(std::move(current)) {}

    /// Without a current layout this one counts.
    std::optional<ScriptedLayout> asciiCapable;

    void select(std::optional<ScriptedLayout> layout);

    [[nodiscard]] std::optional<KeyboardLayout> currentLayout() override;
    [[nodiscard]] std::optional<KeyboardLayout> asciiCapableLayout() override;
    [[nodiscard]] Subscription onLayoutChange(std::function<void()> observer) override;

  private:
    std::optional<ScriptedLayout> current_;
    Signal<> changed_;
};

}  // namespace orbinex
