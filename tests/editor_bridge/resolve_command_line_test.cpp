#include "editor_bridge/resolve_command_line.h"

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(ResolveCommandLine, isWrittenForWhatTheEditorCanDo) {
    const std::pair<const char*, std::optional<std::string>> rows[] = {
        {"VOL|2|-6", "VOL|2|-6.00"},
        {"VOL|2|40", "VOL|2|40.00"},
        {"VOL|-3|1.005", "VOL|-3|1.00"},
        {"VOL|2|nan", "VOL|2|-96.00"},
        {"VOL|2|inf", "VOL|2|-96.00"},
        {"VOL|0|-6", std::nullopt},
        {"PAN|1|-33.35", "PAN|1|-33.4"},
        {"PAN|1|200", "PAN|1|200.0"},
        {"PAN|0|10", std::nullopt},
        {"PAN|1|nan", std::nullopt},
        {"MUTE|2|1", "MUTE|2|0"},
        {"MUTE|2|0", "MUTE|2|1"},
        {"MUTE|0|1", std::nullopt},
        {"SOLO|2|1", std::nullopt},
        {"ARM|1|1", "LOCK|1|1"},
        {"ARM|1|0", "LOCK|1|0"},
        {"ARM|-1|1", std::nullopt},
        {"VISO|2|1|80", "VISO|2|1|80"},
        {"VISO|0|0|-5", "VISO|0|0|-5"},
        {"DLEV|2|1|3.14", "DLEV|2|1|3.1"},
        {"DLEV|2|1|inf", std::nullopt},
        {"LINK|0", "LINK|0"},
        {"PAGE|Fairlight", "PAGE|fairlight"},
        {"PAGE|ÉDIT", "PAGE|édit"},
        {"TC|01:00:00;00", "TC|01:00:00;00"},
        {"CDL|2|0.1|0|-0.1|1.2|1|1|1|0.9", "CDL|2|1.2000|1.0000|1.0000|0.1000|0.0000|-0.1000|1.0000|0.900"},
        {"CDL|0|0|0|0|1|1|1|0.05|1", "CDL|1|0.1000|0.1000|0.1000|0.0000|0.0000|0.0000|1.9500|1.000"},
        {"CDL|1|0|0|0|1|1|-4|2.5|1", "CDL|1|2.5000|2.5000|0.1000|0.0000|0.0000|0.0000|0.2000|1.000"},
        {"CDL|1|0|0|nan|1|1|1|1|1", std::nullopt},
        {"CDL|1|0|0|0|1|1|1|-inf|1", std::nullopt},
        {"NEN|3|1", "NEN|3|1"},
        {"NEN|-2|0", "NEN|1|0"},
        {"SEL|2", std::nullopt},
        {"SYNC", "REFRESH"},
    };
    for (const auto& [text, line] : rows) {
        const auto command = DAWCommand::decode(text);
        ASSERT_TRUE(command) << text;
        EXPECT_EQ(resolveCommandLine(*command), line) << text;
    }
}

}  // namespace
}  // namespace orbinex
