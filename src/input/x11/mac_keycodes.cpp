#include "input/x11/mac_keycodes.h"

#include <array>

namespace orbinex {

namespace {

/// By macOS virtual key code; an empty name where there is none.
constexpr std::array<PCKey, macKeycodeLimit> keys = [] {
    std::array<PCKey, macKeycodeLimit> k{};
    // Letters, digits and signs, as the ANSI keyboard places them.
    k[0] = {"AC01", 30};
    k[1] = {"AC02", 31};
    k[2] = {"AC03", 32};
    k[3] = {"AC04", 33};
    k[4] = {"AC06", 35};
    k[5] = {"AC05", 34};
    k[6] = {"AB01", 44};
    k[7] = {"AB02", 45};
    k[8] = {"AB03", 46};
    k[9] = {"AB04", 47};
    k[10] = {"LSGT", 86};  // ISO section
    k[11] = {"AB05", 48};
    k[12] = {"AD01", 16};
    k[13] = {"AD02", 17};
    k[14] = {"AD03", 18};
    k[15] = {"AD04", 19};
    k[16] = {"AD06", 21};
    k[17] = {"AD05", 20};
    k[18] = {"AE01", 2};
    k[19] = {"AE02", 3};
    k[20] = {"AE03", 4};
    k[21] = {"AE04", 5};
    k[22] = {"AE06", 7};
    k[23] = {"AE05", 6};
    k[24] = {"AE12", 13};
    k[25] = {"AE09", 10};
    k[26] = {"AE07", 8};
    k[27] = {"AE11", 12};
    k[28] = {"AE08", 9};
    k[29] = {"AE10", 11};
    k[30] = {"AD12", 27};
    k[31] = {"AD09", 24};
    k[32] = {"AD07", 22};
    k[33] = {"AD11", 26};
    k[34] = {"AD08", 23};
    k[35] = {"AD10", 25};
    k[36] = {"RTRN", 28};
    k[37] = {"AC09", 38};
    k[38] = {"AC07", 36};
    k[39] = {"AC11", 40};
    k[40] = {"AC08", 37};
    k[41] = {"AC10", 39};
    k[42] = {"BKSL", 43};
    k[43] = {"AB08", 51};
    k[44] = {"AB10", 53};
    k[45] = {"AB06", 49};
    k[46] = {"AB07", 50};
    k[47] = {"AB09", 52};
    k[48] = {"TAB", 15};
    k[49] = {"SPCE", 57};
    k[50] = {"TLDE", 41};
    k[51] = {"BKSP", 14};
    k[52] = {"KPEN", 96};  // Enter of small keyboards
    k[53] = {"ESC", 1};
    // Modifiers.
    k[54] = {"RWIN", 126};
    k[55] = {"LWIN", 125};
    k[56] = {"LFSH", 42};
    k[57] = {"CAPS", 58};
    k[58] = {"LALT", 56};
    k[59] = {"LCTL", 29};
    k[60] = {"RTSH", 54};
    k[61] = {"RALT", 100};
    k[62] = {"RCTL", 97};
    // Keypad.
    k[65] = {"KPDL", 83};
    k[67] = {"KPMU", 55};
    k[69] = {"KPAD", 78};
    k[71] = {"NMLK", 69};  // Clear
    k[75] = {"KPDV", 98};
    k[76] = {"KPEN", 96};
    k[78] = {"KPSU", 74};
    k[81] = {"KPEQ", 117};
    k[82] = {"KP0", 82};
    k[83] = {"KP1", 79};
    k[84] = {"KP2", 80};
    k[85] = {"KP3", 81};
    k[86] = {"KP4", 75};
    k[87] = {"KP5", 76};
    k[88] = {"KP6", 77};
    k[89] = {"KP7", 71};
    k[91] = {"KP8", 72};
    k[92] = {"KP9", 73};
    k[95] = {"KPPT", 121};  // keypad comma
    // Japanese keyboards.
    k[93] = {"AE13", 124};  // yen
    k[94] = {"AB11", 89};   // underscore
    k[102] = {"MUHE", 94};  // eisu
    k[104] = {"HKTG", 93};  // kana
    // Sound.
    k[72] = {"VOL+", 115};
    k[73] = {"VOL-", 114};
    k[74] = {"MUTE", 113};
    // Function keys.
    k[122] = {"FK01", 59};
    k[120] = {"FK02", 60};
    k[99] = {"FK03", 61};
    k[118] = {"FK04", 62};
    k[96] = {"FK05", 63};
    k[97] = {"FK06", 64};
    k[98] = {"FK07", 65};
    k[100] = {"FK08", 66};
    k[101] = {"FK09", 67};
    k[109] = {"FK10", 68};
    k[103] = {"FK11", 87};
    k[111] = {"FK12", 88};
    k[105] = {"FK13", 183};
    k[107] = {"FK14", 184};
    k[113] = {"FK15", 185};
    k[106] = {"FK16", 186};
    k[64] = {"FK17", 187};
    k[79] = {"FK18", 188};
    k[80] = {"FK19", 189};
    k[90] = {"FK20", 190};
    // Navigation.
    k[110] = {"COMP", 127};  // context menu
    k[114] = {"INS", 110};   // Help
    k[115] = {"HOME", 102};
    k[116] = {"PGUP", 104};
    k[117] = {"DELE", 111};
    k[119] = {"END", 107};
    k[121] = {"PGDN", 109};
    k[123] = {"LEFT", 105};
    k[124] = {"RGHT", 106};
    k[125] = {"DOWN", 108};
    k[126] = {"UP", 103};
    return k;
}();

}  // namespace

std::optional<PCKey> pcKey(std::uint16_t macKeycode) {
    if (macKeycode >= keys.size() || keys[macKeycode].xkbName.empty()) return std::nullopt;
    return keys[macKeycode];
}

std::optional<ModifierKey> modifierKey(std::uint16_t macKeycode) {
    switch (macKeycode) {
        case 54: return ModifierKey::rightCommand;
        case 55: return ModifierKey::leftCommand;
        case 56: return ModifierKey::leftShift;
        case 58: return ModifierKey::leftOption;
        case 59: return ModifierKey::leftControl;
        case 60: return ModifierKey::rightShift;
        case 61: return ModifierKey::rightOption;
        case 62: return ModifierKey::rightControl;
        default: return std::nullopt;
    }
}

}  // namespace orbinex
