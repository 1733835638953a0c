#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "input/key_mapping.h"
#include "input/keyboard_layout_source.h"

namespace orbinex {

/// Which key gives which character. Characters are compared by canonical equivalence and by case, so that a
/// letter followed by its combining accent finds the key of the composed letter.
class LayoutTable {
  public:
    /// Asks the layout for every candidate key without modifiers, with shift, with option and with both, in
    /// this order; the first key that gives a character keeps it. Dead keys, keys that give several
    /// characters or none, and control characters are left out.
    static LayoutTable build(const KeyboardLayout& layout);

    /// The key of one user-perceived character in valid UTF-8, or nothing.
    [[nodiscard]] std::optional<KeyMapping> find(std::string_view character) const;
    [[nodiscard]] std::size_t size() const { return keys_.size(); }

    friend bool operator==(const LayoutTable&, const LayoutTable&) = default;

  private:
    std::unordered_map<std::string, KeyMapping> keys_;
};

}  // namespace orbinex
