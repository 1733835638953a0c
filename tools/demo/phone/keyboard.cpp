#include "keyboard.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "test_phone/gestures.h"
#include "test_phone/key_names.h"

namespace orbinex::demo {

namespace {

struct Named {
    Qt::Key key;
    std::string_view name;
};
constexpr std::array editingKeys{
    Named{Qt::Key_Return, "return"}, Named{Qt::Key_Enter, "return"},      Named{Qt::Key_Backspace, "delete"},
    Named{Qt::Key_Tab, "tab"},       Named{Qt::Key_Backtab, "tab"},       Named{Qt::Key_Escape, "escape"},
    Named{Qt::Key_Left, "left"},     Named{Qt::Key_Right, "right"},       Named{Qt::Key_Up, "up"},
    Named{Qt::Key_Down, "down"},     Named{Qt::Key_Home, "home"},         Named{Qt::Key_End, "end"},
    Named{Qt::Key_PageUp, "pageup"}, Named{Qt::Key_PageDown, "pagedown"},
};

ModifierFlags flagsOf(Qt::KeyboardModifiers modifiers) {
    ModifierFlags flags;
    if (modifiers & Qt::ShiftModifier) flags |= ModifierFlags::shift;
    if (modifiers & Qt::AltModifier) flags |= ModifierFlags::option;
    if (modifiers & (Qt::ControlModifier | Qt::MetaModifier)) flags |= ModifierFlags::command;
    return flags;
}

}  // namespace

std::vector<DecodedPacket> packetsOfKey(int key, Qt::KeyboardModifiers modifiers) {
    const auto flags = flagsOf(modifiers);
    const auto editing = std::ranges::find(editingKeys, key, &Named::key);
    if (editing != editingKeys.end()) {
        const auto code = test_phone::keycodeNamed(editing->name);
        return code ? test_phone::strike(*code, flags) : std::vector<DecodedPacket>();
    }
    if (key < Qt::Key_Exclam || key > Qt::Key_AsciiTilde) return {};
    const std::string character = QString(QChar(key)).toLower().toStdString();
    const bool isLetter = key >= Qt::Key_A && key <= Qt::Key_Z;
    const auto code = isLetter ? test_phone::keycodeNamed(character) : std::nullopt;
    if (flags.contains(ModifierFlags::command))
        return {DecodedPacket{DecodedPacket::Text{character, flags, code}}};
    if (flags.contains(ModifierFlags::option) && code) return test_phone::strike(*code, flags);
    return {};
}

std::vector<DecodedPacket> packetsOfTyping(const QString& before, const QString& after) {
    const auto first = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    auto begin = first.second - after.begin();
    const auto most = std::min(before.size(), after.size()) - begin;
    auto same = decltype(most){0};
    while (same < most && before[before.size() - 1 - same] == after[after.size() - 1 - same]) ++same;
    // A pair of surrogates is one character.
    if (begin > 0 && begin < after.size() && after[begin].isLowSurrogate()) --begin;
    if (same > 0 && after[after.size() - same].isLowSurrogate()) --same;
    return test_phone::typedText(after.mid(begin, after.size() - begin - same).toStdString());
}

}  // namespace orbinex::demo
