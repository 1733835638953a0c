#include "base/text.h"

#include <gtest/gtest.h>

#include "support/comma_locale.h"

using namespace orbinex;
using namespace std::literals;

namespace {

ByteView bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(UTF8, isRepairedWhereItIsBrokenAndRefusedWhenItMustBeStrict) {
    struct Case {
        std::string_view bytes;
        std::string_view repaired;
    };
    const Case broken[] = {
        {"\x80", "\uFFFD"},  // continuation without a lead
        {"\xC3", "\uFFFD"},  // lead at the end
        {"a\xC3"
         "b",
         "a\uFFFDb"},            // lead before something else
        {"\xE2\x82", "\uFFFD"},  // one replacement for a truncated sequence
        {"\xE2\x82"
         "A",
         "\uFFFD"
         "A"},
        {"\xF0\x9F\x98", "\uFFFD"},
        {"\xF0\x9F\x98\xC3\xA9", "\uFFFD\u00E9"},
        {"\xC0\xAF", "\uFFFD\uFFFD"},            // overlong
        {"\xE0\x80\xAF", "\uFFFD\uFFFD\uFFFD"},  // overlong
        {"\xF0\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},            // surrogate
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last scalar
        {"\xF8\x88\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xFF\xFE", "\uFFFD\uFFFD"},
    };
    for (const auto& [bytes, repaired] : broken) {
        EXPECT_EQ(repairUTF8(bytesOf(bytes)), repaired);
        EXPECT_FALSE(strictUTF8(bytesOf(bytes)));
    }
    for (const std::string_view valid :
         {""sv, "a\0b"sv, "\u00E9\u20AC\U0001F600"sv, "\uD7FF\uE000\uFFFD\uFFFF\U0010FFFF"sv}) {
        EXPECT_EQ(repairUTF8(bytesOf(valid)), valid);
        EXPECT_EQ(strictUTF8(bytesOf(valid)), valid);
    }
}

TEST(Characters, areWhatAReaderSeesAsOne) {
    const std::string_view characters[] = {
        "a",
        "e\u0301",  // letter and accent
        "\r\n",
        "\U0001F1EB\U0001F1F7",                        // a flag
        "\U0001F468\u200D\U0001F469\u200D\U0001F467",  // a family
        "\U0001F44D\U0001F3FD",                        // thumb with a skin tone
        "\u1112\u1161\u11AB",                          // a Hangul syllable in three parts
        "\u0E01\u0E33",                                // consonant with a spacing vowel
        "\u2764\uFE0F",
    };
    std::string all;
    for (const auto character : characters) all += character;
    all += "\U0001F1E9\U0001F1EA";

    std::string_view rest = all;
    for (const auto character : characters) {
        ASSERT_EQ(firstCharacterLength(rest), character.size()) << character;
        EXPECT_EQ(firstCharacters(character, 1), character);
        rest.remove_prefix(character.size());
    }
    EXPECT_EQ(firstCharacters(all, std::size(characters)), all.substr(0, all.size() - rest.size()));
    EXPECT_EQ(firstCharacters(all, 1000), all);
    EXPECT_EQ(firstCharacters(all, 0), "");
    EXPECT_EQ(firstCharacterLength(""), 0U);
    // Four regional indicators in a row are two flags.
    EXPECT_EQ(firstCharacterLength("\U0001F1EB\U0001F1F7\U0001F1E9\U0001F1EA"), 8U);
}

TEST(LowerCase, coversLettersThatNeedMoreThanOneScalar) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"COM.Apple.DT", "com.apple.dt"},
        {"\u00C4\u0416\u03A9", "\u00E4\u0436\u03C9"},
        {"\u0130", "i\u0307"},
        {"I", "i"},
        {"\U00010400", "\U00010428"},
        {"\u03A3\u03A3", "\u03C3\u03C3"},
        {"\u00DF\u4E2D1", "\u00DF\u4E2D1"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(lowercased(text), expected);
    const test::CommaLocale german;
    EXPECT_EQ(lowercased("I\u00C4"), "i\u00E4");
}

TEST(CanonicalForm, makesEquivalentTextsEqual) {
    EXPECT_EQ(canonicalForm("e\u0301"), "\u00E9");
    EXPECT_EQ(canonicalForm("\u1100\u1161"), "\uAC00");
    EXPECT_EQ(canonicalForm("\u212B"), "\u00C5");
    EXPECT_EQ(canonicalForm("q\u0307\u0323"), canonicalForm("q\u0323\u0307"));
    EXPECT_EQ(canonicalForm("\uFB01"), "\uFB01");  // a compatible form is not an equivalent one
    EXPECT_EQ(canonicalForm("a\0e\u0301"sv), "a\0\u00E9"sv);
    EXPECT_EQ(canonicalForm(""), "");
}

TEST(ControlCharacters, areTrimmedAtBothEndsOnly) {
    for (const char32_t scalar :
         {U'\0', U'\n', U'\x7F', U'\x85', U'\u00AD', U'\u200B', U'\u200E', U'\uFEFF', U'\U000E0001'}) {
        EXPECT_TRUE(isControlCharacter(scalar)) << static_cast<unsigned>(scalar);
    }
    for (const char32_t scalar :
         {U' ', U'a', U'\u00A0', U'\u2028', U'\uE000', U'\U0010FFFF', static_cast<char32_t>(0xFFFFFFFF)}) {
        EXPECT_FALSE(isControlCharacter(scalar)) << static_cast<unsigned>(scalar);
    }
    EXPECT_EQ(trimControlCharacters("\u200B\t a\nb \r\n\uFEFF"), " a\nb ");
    EXPECT_EQ(trimControlCharacters("   \n"), "   ");
    EXPECT_EQ(trimControlCharacters("\n\u200E"), "");
    EXPECT_EQ(trimControlCharacters(""), "");
}

TEST(UTF8, isTakenUpToACharacterThatIsCutOff) {
    const struct {
        std::string_view bytes;
        std::size_t length;
        bool isCut;
    } rows[] =
        {
            {"", 0, false},           {"abc", 3, false},  {"a\u20AC", 4, false},
            {"a\xE2\x82", 1, true},   {"a\xE2", 1, true}, {"\xF0\x9F\x98", 0, true},
            {"a\xE2\x82z", 1, false},  // something else follows
            {"a\xE0\x80", 1, false},   // overlong, however it goes on
            {"a\x82", 1, false},       // continuation without a lead
            {"a\xFF", 1, false},
        };
    for (const auto& [bytes, length, isCut] : rows) {
        const auto prefix = validUTF8(bytesOf(bytes));
        EXPECT_EQ(prefix.length, length) << bytes;
        EXPECT_EQ(prefix.isCut, isCut) << bytes;
    }
}

TEST(WhiteSpace, isTrimmedAtBothEndsOnly) {
    EXPECT_EQ(trimWhitespace(" \t\r\n\u00A0\u2003\u2028a b\u3000\x0B\u0085 "), "a b");
    EXPECT_EQ(trimWhitespace("\u200Ba\u200B"), "\u200Ba\u200B");
    EXPECT_EQ(trimWhitespace("\u20AC "), "\u20AC");
    EXPECT_EQ(trimWhitespace(" \n "), "");
    EXPECT_EQ(trimWhitespace(""), "");
}

TEST(Case, isChangedAndOverlooked) {
    EXPECT_EQ(uppercased("edit \u00E9\u0436 1"), "EDIT \u00C9\u0416 1");
    EXPECT_TRUE(containsIgnoringCase("com.Example.EDITOR.beta", "example.editor"));
    EXPECT_TRUE(containsIgnoringCase("abc", ""));
    EXPECT_FALSE(containsIgnoringCase("ab", "abc"));
    EXPECT_FALSE(containsIgnoringCase("", "a"));
}

TEST(UTF16, comesAndGoesInSurrogatePairs) {
    EXPECT_EQ(utf16("a\u20AC\U0001F600"), u"a\u20AC\xD83D\xDE00");
    EXPECT_EQ(utf8(u"a\u20AC\xD83D\xDE00"), "a\u20AC\U0001F600");
    EXPECT_EQ(utf8(std::u16string_view(u"\xD83D"
                                       u"a\xDE00")),
              "\uFFFD"
              "a\uFFFD");
    EXPECT_EQ(utf8(std::u16string_view(u"\xD83D\xD83D\xDE00")), "\uFFFD\U0001F600");
    EXPECT_EQ(firstScalar("\U0001F600a"), U'\U0001F600');
    EXPECT_EQ(firstScalar(""), std::nullopt);
}

TEST(Split, keepsEmptyFields) {
    using Fields = std::vector<std::string_view>;
    EXPECT_EQ(split("", '|'), Fields{""});
    EXPECT_EQ(split("a|b", '|'), (Fields{"a", "b"}));
    EXPECT_EQ(split("|a||", '|'), (Fields{"", "a", "", ""}));
}

}  // namespace
