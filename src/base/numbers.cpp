#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace orbinex {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// For a well-formed number that no double can hold: true when it is too large, false when it is too small.
/// Such numbers lie so far from 1 that the place of the first digit that is not zero decides, together with
/// the exponent.
bool isTooLarge(std::string_view number, bool hexadecimal) {
    const std::size_t exponentMark = number.find_first_of(hexadecimal ? "pP" : "eE");
    const std::string_view mantissa = number.substr(0, exponentMark);
    const std::size_t first = mantissa.find_first_not_of("0.");
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    if (first == std::string_view::npos) return false;

    std::int64_t place = first < point ? static_cast<std::int64_t>(point - first)
                                       : -static_cast<std::int64_t>(first - point - 1);
    if (hexadecimal) place *= 4;
    if (exponentMark == std::string_view::npos) return place > 0;

    const std::string_view exponentText = number.substr(exponentMark + 1);
    const auto exponent = parseInteger(exponentText);
    if (!exponent || *exponent < -(std::int64_t{1} << 62) || *exponent > (std::int64_t{1} << 62)) {
        return exponentText.front() != '-';
    }
    return place + *exponent > 0;
}

}  // namespace

std::optional<std::int64_t> parseInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

std::optional<double> parseDecimal(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    if (text.empty()) return std::nullopt;
    // from_chars takes a minus of its own and, after "0x", the names of infinity and not-a-number.
    if (text.front() == '-') return std::nullopt;
    if (hexadecimal && text.front() != '.' && !isHexDigit(text.front())) return std::nullopt;
    // libstdc++ 12 takes two signs in a hexadecimal exponent.
    if (text.find("+-") != std::string_view::npos) return std::nullopt;

    double magnitude = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(
        text.data(), end, magnitude, hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        magnitude = isTooLarge(text, hexadecimal) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return negative ? -magnitude : magnitude;
}

std::string formatFixed(double value, int decimals) {
    // The largest double has 309 digits before the point; a sign, the point and 9 decimals come on top.
    std::array<char, 336> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            std::chars_format::fixed, decimals);
    if (error != std::errc()) return {};
    return {buffer.data(), end};
}

std::string formatDecimal(double value) {
    std::array<char, 32> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    if (error != std::errc()) return {};
    return {buffer.data(), end};
}

}  // namespace orbinex
