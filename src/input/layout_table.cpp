#include "input/layout_table.h"

#include <array>

#include "base/text.h"
#include "input/candidate_keycodes.h"

namespace orbinex {

namespace {

constexpr std::array<ModifierFlags, 4> combinations{ModifierFlags{}, ModifierFlags::shift,
                                                    ModifierFlags::option,
                                                    ModifierFlags::shift | ModifierFlags::option};

bool isOneTypedCharacter(std::string_view text) {
    const auto scalar = firstScalar(text);
    return scalar && !isControlCharacter(*scalar) && firstCharacterLength(text) == text.size();
}

}  // namespace

LayoutTable LayoutTable::build(const KeyboardLayout& layout) {
    LayoutTable table;
    for (const ModifierFlags modifiers : combinations) {
        for (const std::uint16_t keycode : candidateKeycodes) {
            const KeyTranslation translation = layout.translate(keycode, modifiers);
            if (translation.kind != KeyTranslation::Kind::text) continue;
            if (!isOneTypedCharacter(translation.text)) continue;
            table.keys_.try_emplace(canonicalForm(translation.text), KeyMapping{keycode, modifiers});
        }
    }
    return table;
}

std::optional<KeyMapping> LayoutTable::find(std::string_view character) const {
    const auto it = keys_.find(canonicalForm(character));
    return it == keys_.end() ? std::nullopt : std::optional(it->second);
}

}  // namespace orbinex
