// What the phone sends for keys, and for what is typed into its field.

#include "demo/phone/keyboard.h"

#include <gtest/gtest.h>

namespace orbinex::demo {
namespace {

std::string typed(const QString& before, const QString& after) {
    std::string all;
    for (const auto& packet : packetsOfTyping(before, after))
        all += "[" + std::get<DecodedPacket::Text>(packet.value).text + "]";
    return all;
}

TEST(PhoneKeyboard, sendsWhatTheFieldHasGained) {
    const struct {
        const char* before;
        const char* after;
        const char* sent;
    } rows[] = {
        {"", "a", "[a]"},
        {"ab", "abc", "[c]"},
        {"a", "a two words", "[ ][two ][words]"},
        {"aa", "aaa", "[a]"},
        {"abc", "ab", ""},
        {"abc", "", ""},
        {"ad", "abcd", "[bc]"},
        {"", "ä😀", "[ä😀]"},
        // Two that share half of their code units.
        {"😀", "😀😁", "[😁]"},
        {"😀", "😁", "[😁]"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(typed(QString(row.before), QString(row.after)), row.sent) << row.sent;
}

TEST(PhoneKeyboard, strikesKeysThatEditAndCharactersWithModifiers) {
    const auto strikes = [](std::uint16_t code, ModifierFlags flags) {
        return std::vector<DecodedPacket>{{DecodedPacket::KeyStroke{code, flags, KeyState::pressed}},
                                          {DecodedPacket::KeyStroke{code, flags, KeyState::released}}};
    };
    EXPECT_EQ(packetsOfKey(Qt::Key_Return, {}), strikes(36, {}));
    EXPECT_EQ(packetsOfKey(Qt::Key_Left, Qt::ShiftModifier), strikes(123, ModifierFlags::shift));
    EXPECT_EQ(packetsOfKey(Qt::Key_B, Qt::AltModifier), strikes(11, ModifierFlags::option));
    EXPECT_EQ(
        packetsOfKey(Qt::Key_C, Qt::ControlModifier),
        (std::vector<DecodedPacket>{{DecodedPacket::Text{"c", ModifierFlags::command, std::uint16_t{8}}}}));
    EXPECT_EQ(packetsOfKey(Qt::Key_Plus, Qt::ControlModifier),
              (std::vector<DecodedPacket>{{DecodedPacket::Text{"+", ModifierFlags::command, std::nullopt}}}));
    EXPECT_TRUE(packetsOfKey(Qt::Key_A, Qt::ShiftModifier).empty()) << "the field types it";
    EXPECT_TRUE(packetsOfKey(Qt::Key_Shift, Qt::ShiftModifier).empty());
    EXPECT_TRUE(packetsOfKey(Qt::Key_Control, Qt::ControlModifier).empty());
}

}  // namespace
}  // namespace orbinex::demo
