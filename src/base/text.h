#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/bytes.h"

namespace orbinex {

/// Reads bytes as UTF-8, each maximal invalid sequence replaced by U+FFFD. Never fails.
std::string repairUTF8(ByteView bytes);
/// Reads bytes as UTF-8; nothing when any of it is invalid (overlong forms, surrogates and values above
/// U+10FFFF included).
std::optional<std::string> strictUTF8(ByteView bytes);
/// How many bytes at the beginning are whole, valid characters. What follows is the beginning of a character
/// that is cut off (`isCut`), or invalid, or nothing.
struct UTF8Prefix {
    std::size_t length;
    bool isCut;
};
UTF8Prefix validUTF8(ByteView bytes);

/// The byte length of the first user-perceived character (extended grapheme cluster) of valid UTF-8 text;
/// 0 for empty text. Allocates nothing.
std::size_t firstCharacterLength(std::string_view text);
/// The first `count` user-perceived characters of valid UTF-8 text.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Lower case of valid UTF-8 text, independent of the locale.
std::string lowercased(std::string_view text);
/// Upper case of valid UTF-8 text, letter by letter, independent of the locale.
std::string uppercased(std::string_view text);
/// True when `part`, which is ASCII, occurs in the text in letters of either case. Allocates nothing.
bool containsIgnoringCase(std::string_view text, std::string_view part);
/// Canonical composition (NFC) of valid UTF-8 text: canonically equivalent texts become equal.
std::string canonicalForm(std::string_view text);
/// True for Unicode control characters (general category Cc) and invisible format characters (Cf).
bool isControlCharacter(char32_t scalar);
/// The text without control characters at both ends.
std::string_view trimControlCharacters(std::string_view text);
/// The text without white space and line ends of any script at both ends. Allocates nothing.
std::string_view trimWhitespace(std::string_view text);
/// The first Unicode scalar of valid UTF-8 text, or nothing for empty text.
std::optional<char32_t> firstScalar(std::string_view text);
/// UTF-16 code units of valid UTF-8 text.
std::u16string utf16(std::string_view text);
/// UTF-8 of UTF-16 code units, each lone surrogate replaced by U+FFFD.
std::string utf8(std::u16string_view units);

/// Splits at every separator; empty fields remain, and empty text is one empty field.
std::vector<std::string_view> split(std::string_view text, char separator);

}  // namespace orbinex
