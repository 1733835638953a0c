#include "base/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include <utf8proc.h>

namespace orbinex {

namespace {

constexpr char32_t replacement = 0xFFFD;

/// One step through bytes that should be UTF-8.
struct Step {
    /// What was read, or U+FFFD.
    char32_t scalar;
    /// Bytes used; for invalid bytes, the longest start of a valid sequence, at least one.
    std::size_t length;
    bool valid;
};

/// Reads the first scalar of bytes that are not empty. Well-formed sequences are those of table 3-7 of the
/// Unicode Standard: the second byte's range depends on the first, which shuts out overlong forms, surrogates
/// and everything above U+10FFFF.
Step step(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    if (lead < 0xC2 || lead > 0xF4) return {replacement, 1, false};

    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    unsigned lowest = 0x80;
    unsigned highest = 0xBF;
    if (lead == 0xE0) lowest = 0xA0;
    if (lead == 0xED) highest = 0x9F;
    if (lead == 0xF0) lowest = 0x90;
    if (lead == 0xF4) highest = 0x8F;

    char32_t scalar = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size() || byte(i) < lowest || byte(i) > highest) return {replacement, i, false};
        scalar = (scalar << 6) | (byte(i) & 0x3FU);
        lowest = 0x80;
        highest = 0xBF;
    }
    return {scalar, length, true};
}

/// True for a byte that begins a sequence of several bytes.
bool isLead(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0xC2 && byte <= 0xF4;
}

void append(std::string& text, char32_t scalar) {
    std::array<utf8proc_uint8_t, 4> buffer;
    const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(scalar), buffer.data());
    text.append(buffer.begin(), buffer.begin() + length);
}

std::string_view asText(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isASCII(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

char lowerASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isWhitespace(char32_t scalar) {
    if (scalar < 0x80) return scalar == ' ' || (scalar >= '\t' && scalar <= '\r');
    const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(scalar));
    return scalar == 0x85 || category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

/// The text without the scalars at both ends for which `isCut` holds.
template <class Predicate>
std::string_view trim(std::string_view text, Predicate isCut) {
    while (!text.empty()) {
        const Step first = step(text);
        if (!isCut(first.scalar)) break;
        text.remove_prefix(first.length);
    }
    // Backwards, a scalar begins at the last byte that does not continue one.
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80) --start;
        if (!isCut(step(text.substr(start)).scalar)) break;
        text.remove_suffix(text.size() - start);
    }
    return text;
}

}  // namespace

std::string repairUTF8(ByteView bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (std::string_view rest = asText(bytes); !rest.empty();) {
        const Step next = step(rest);
        if (next.valid)
            result.append(rest.substr(0, next.length));
        else
            append(result, replacement);
        rest.remove_prefix(next.length);
    }
    return result;
}

std::optional<std::string> strictUTF8(ByteView bytes) {
    const std::string_view text = asText(bytes);
    for (std::string_view rest = text; !rest.empty();) {
        const Step next = step(rest);
        if (!next.valid) return std::nullopt;
        rest.remove_prefix(next.length);
    }
    return std::string(text);
}

UTF8Prefix validUTF8(ByteView bytes) {
    const std::string_view text = asText(bytes);
    std::size_t length = 0;
    while (length < text.size()) {
        if (isASCII(text[length])) {
            ++length;
            continue;
        }
        const Step next = step(text.substr(length));
        // A sequence that is invalid only because the text ends is one that is cut.
        if (!next.valid) return {length, length + next.length == text.size() && isLead(text[length])};
        length += next.length;
    }
    return {length, false};
}

std::size_t firstCharacterLength(std::string_view text) {
    if (text.empty()) return 0;
    // Nothing joins a printing ASCII character to another ASCII one.
    if (text[0] >= ' ' && text[0] <= '~' && (text.size() == 1 || isASCII(text[1]))) return 1;
    Step current = step(text);
    std::size_t length = current.length;
    utf8proc_int32_t state = 0;
    while (length < text.size()) {
        const Step next = step(text.substr(length));
        if (utf8proc_grapheme_break_stateful(static_cast<utf8proc_int32_t>(current.scalar),
                                             static_cast<utf8proc_int32_t>(next.scalar), &state)) {
            break;
        }
        length += next.length;
        current = next;
    }
    return length;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t length = 0;
    for (; count > 0 && length < text.size(); --count) length += firstCharacterLength(text.substr(length));
    return text.substr(0, length);
}

std::string lowercased(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Step next = step(text);
        if (next.scalar == 0x130) {
            // Capital I with a dot above: the one letter whose lower case is two scalars wherever it stands.
            result += "i\u0307";
        } else {
            append(result,
                   static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(next.scalar))));
        }
        text.remove_prefix(next.length);
    }
    return result;
}

std::string uppercased(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Step next = step(text);
        append(result, static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(next.scalar))));
        text.remove_prefix(next.length);
    }
    return result;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    const auto isSame = [](char a, char b) { return lowerASCII(a) == lowerASCII(b); };
    return part.empty() ||
           std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end();
}

std::string canonicalForm(std::string_view text) {
    utf8proc_uint8_t* mapped = nullptr;
    const auto length = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                     static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                                     static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
    if (length < 0) return std::string(text);
    return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

bool isControlCharacter(char32_t scalar) {
    const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(scalar));
    return category == UTF8PROC_CATEGORY_CC || category == UTF8PROC_CATEGORY_CF;
}

std::string_view trimControlCharacters(std::string_view text) {
    return trim(text, isControlCharacter);
}

std::string_view trimWhitespace(std::string_view text) {
    return trim(text, isWhitespace);
}

std::optional<char32_t> firstScalar(std::string_view text) {
    if (text.empty()) return std::nullopt;
    return step(text).scalar;
}

std::u16string utf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Step next = step(text);
        if (next.scalar < 0x10000) {
            result.push_back(static_cast<char16_t>(next.scalar));
        } else {
            const char32_t offset = next.scalar - 0x10000;
            result.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
            result.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
        }
        text.remove_prefix(next.length);
    }
    return result;
}

std::string utf8(std::u16string_view units) {
    std::string result;
    result.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char32_t unit = units[i];
        const bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
        const bool pair = unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units.size() &&
                          units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF;
        if (pair) {
            append(result,
                   0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(units[i + 1]) - 0xDC00));
            ++i;
        } else {
            append(result, surrogate ? replacement : unit);
        }
    }
    return result;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos;
         end = text.find(separator, start)) {
        fields.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    fields.push_back(text.substr(start));
    return fields;
}

}  // namespace orbinex
