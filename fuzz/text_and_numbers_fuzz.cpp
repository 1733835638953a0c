#include <bit>
#include <cctype>
#include <cmath>
#include <cstdlib>

#include "base/numbers.h"
#include "base/text.h"
#include "require.h"

using namespace orbinex;

namespace {

ByteView bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool isValid(std::string_view text) {
    return strictUTF8(bytesOf(text)).has_value();
}

bool same(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) ||
           std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// What the C library reads from the whole text; no locale is ever set here.
std::optional<double> readByTheCLibrary(const std::string& text) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text.front()))) return std::nullopt;
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size()) return std::nullopt;
    return value;
}

void checkNumbers(const std::string& text) {
    const auto decimal = parseDecimal(text);
    const auto expected = readByTheCLibrary(text);
    REQUIRE(decimal.has_value() == expected.has_value());
    if (decimal) {
        REQUIRE(same(*decimal, *expected));
        REQUIRE(same(parseDecimal(formatDecimal(*decimal)).value(), *decimal));
        const std::string fixed = formatFixed(*decimal, 3);
        REQUIRE(formatFixed(parseDecimal(fixed).value(), 3) == fixed);
    }
    if (const auto integer = parseInteger(text)) {
        REQUIRE(decimal.has_value());
        REQUIRE(parseInteger(std::to_string(*integer)) == integer);
    }
}

void checkText(const std::string& bytes) {
    const std::string text = repairUTF8(bytesOf(bytes));
    REQUIRE(isValid(text) && text.size() <= 3 * bytes.size());
    REQUIRE(isValid(bytes) == (text == bytes));
    REQUIRE(utf8(utf16(text)) == text);
    REQUIRE(isValid(lowercased(text)) && isValid(canonicalForm(text)));
    REQUIRE(canonicalForm(canonicalForm(text)) == canonicalForm(text));

    std::size_t characters = 0;
    for (std::size_t position = 0; position < text.size(); ++characters) {
        const std::size_t length = firstCharacterLength(std::string_view(text).substr(position));
        REQUIRE(length > 0 && isValid(std::string_view(text).substr(position, length)));
        position += length;
        REQUIRE(firstCharacters(text, characters + 1) == std::string_view(text).substr(0, position));
    }
    const std::string_view trimmed = trimControlCharacters(text);
    REQUIRE(trimmed.empty() || !isControlCharacter(*firstScalar(trimmed)));
    REQUIRE(trimControlCharacters(trimmed) == trimmed);

    std::string joined;
    for (const auto field : split(text, '|')) joined.append(field).push_back('|');
    joined.pop_back();
    REQUIRE(joined == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    checkNumbers(bytes);
    checkText(bytes);
    return 0;
}
