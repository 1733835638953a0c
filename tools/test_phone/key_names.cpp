#include "test_phone/key_names.h"

#include <array>

#include "base/numbers.h"

namespace orbinex::test_phone {

namespace {

struct NamedKey {
    std::string_view name;
    std::uint16_t code;
};

// HIToolbox/Events.h, kVK_ANSI_* and kVK_*.
constexpr std::array namedKeys{
    NamedKey{"a", 0},          NamedKey{"b", 11},
    NamedKey{"c", 8},          NamedKey{"d", 2},
    NamedKey{"e", 14},         NamedKey{"f", 3},
    NamedKey{"g", 5},          NamedKey{"h", 4},
    NamedKey{"i", 34},         NamedKey{"j", 38},
    NamedKey{"k", 40},         NamedKey{"l", 37},
    NamedKey{"m", 46},         NamedKey{"n", 45},
    NamedKey{"o", 31},         NamedKey{"p", 35},
    NamedKey{"q", 12},         NamedKey{"r", 15},
    NamedKey{"s", 1},          NamedKey{"t", 17},
    NamedKey{"u", 32},         NamedKey{"v", 9},
    NamedKey{"w", 13},         NamedKey{"x", 7},
    NamedKey{"y", 16},         NamedKey{"z", 6},
    NamedKey{"return", 36},    NamedKey{"tab", 48},
    NamedKey{"space", 49},     NamedKey{"delete", 51},
    NamedKey{"escape", 53},    NamedKey{"command", 55},
    NamedKey{"shift", 56},     NamedKey{"capslock", 57},
    NamedKey{"option", 58},    NamedKey{"control", 59},
    NamedKey{"enter", 76},     NamedKey{"home", 115},
    NamedKey{"pageup", 116},   NamedKey{"end", 119},
    NamedKey{"pagedown", 121}, NamedKey{"left", 123},
    NamedKey{"right", 124},    NamedKey{"down", 125},
    NamedKey{"up", 126},       NamedKey{"f1", 122},
    NamedKey{"f2", 120},       NamedKey{"f3", 99},
    NamedKey{"f4", 118},       NamedKey{"f5", 96},
    NamedKey{"f6", 97},        NamedKey{"f7", 98},
    NamedKey{"f8", 100},       NamedKey{"f9", 101},
    NamedKey{"f10", 109},      NamedKey{"f11", 103},
    NamedKey{"f12", 111},      NamedKey{"forwarddelete", 117},
};

}  // namespace

std::optional<std::uint16_t> keycodeNamed(std::string_view nameOrCode) {
    for (const auto& key : namedKeys) {
        if (key.name == nameOrCode) return key.code;
    }
    const auto code = parseInteger(nameOrCode);
    if (!code || *code < 0 || *code > 0xFFFF) return std::nullopt;
    return static_cast<std::uint16_t>(*code);
}

std::optional<ModifierFlags> modifierNamed(std::string_view name) {
    if (name == "shift") return ModifierFlags::shift;
    if (name == "control") return ModifierFlags::control;
    if (name == "option") return ModifierFlags::option;
    if (name == "command") return ModifierFlags::command;
    return std::nullopt;
}

}  // namespace orbinex::test_phone
