#include "test_phone/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/numbers.h"
#include "base/text.h"
#include "test_phone/key_names.h"

namespace orbinex::test_phone {

void Words::skipSpaces() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
}

std::string_view Words::word() {
    const auto result = rest_.substr(0, rest_.find(' '));
    rest_.remove_prefix(result.size());
    skipSpaces();
    return result;
}

std::optional<float> Words::points() {
    const auto number = parseDecimal(word());
    if (!number || !std::isfinite(static_cast<float>(*number))) return std::nullopt;
    return static_cast<float>(*number);
}

std::optional<std::int64_t> Words::integer(std::int64_t from, std::int64_t to) {
    const auto number = parseInteger(word());
    return number && *number >= from && *number <= to ? number : std::nullopt;
}

std::optional<bool> Words::onOff() {
    const auto text = word();
    if (text == "on") return true;
    if (text == "off") return false;
    return std::nullopt;
}

std::optional<std::uint16_t> Words::key() {
    return keycodeNamed(word());
}

std::optional<Bytes> Words::hexBytes() {
    Bytes result;
    while (!isEmpty()) {
        const auto digits = word();
        if (digits.size() % 2 != 0) return std::nullopt;
        for (std::size_t i = 0; i < digits.size(); i += 2) {
            const char* end = digits.data() + i + 2;
            std::uint8_t byte = 0;
            if (std::from_chars(digits.data() + i, end, byte, 16).ptr != end) return std::nullopt;
            result.push_back(byte);
        }
    }
    return result;
}

std::optional<ModifierFlags> Words::modifiers() {
    ModifierFlags result;
    while (!isEmpty()) {
        const auto modifier = modifierNamed(word());
        if (!modifier) return std::nullopt;
        result |= *modifier;
    }
    return result;
}

std::optional<ModifierFlags> Words::joinedModifiers() {
    const auto joined = word();
    ModifierFlags result;
    if (joined == "none") return result;
    for (const auto part : split(joined, '+')) {
        const auto modifier = modifierNamed(part);
        if (!modifier) return std::nullopt;
        result |= *modifier;
    }
    return result;
}

std::optional<MouseButton> Words::button() {
    const auto text = word();
    if (text.empty() || text == "left") return MouseButton::left;
    if (text == "right") return MouseButton::right;
    return std::nullopt;
}

}  // namespace orbinex::test_phone
