#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/bytes.h"
#include "protocol/input_packet.h"
#include "protocol/modifier_flags.h"

namespace orbinex::test_phone {

/// Takes a line apart, from the left. The line must outlive this.
class Words {
  public:
    explicit Words(std::string_view line) : rest_(line) { skipSpaces(); }

    [[nodiscard]] bool isEmpty() const { return rest_.empty(); }
    /// Everything that has not been taken, spaces at its end included.
    [[nodiscard]] std::string_view rest() const { return rest_; }

    // Each of these takes the next word. Nothing when there is none, or it is none of this kind; what was
    // taken is then undefined, as the line is wrong.
    std::string_view word();
    std::optional<float> points();
    std::optional<std::int64_t> integer(std::int64_t from, std::int64_t to);
    std::optional<bool> onOff();
    std::optional<std::uint16_t> key();
    /// All words that are left, an even count of hex digits each; none is an empty value.
    std::optional<Bytes> hexBytes();
    /// All words that are left.
    std::optional<ModifierFlags> modifiers();
    /// A word such as "shift+command", or "none".
    std::optional<ModifierFlags> joinedModifiers();
    /// The left button when no word is left.
    std::optional<MouseButton> button();

  private:
    void skipSpaces();

    std::string_view rest_;
};

}  // namespace orbinex::test_phone
