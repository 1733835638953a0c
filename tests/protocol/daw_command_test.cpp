#include "protocol/daw_command.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/comma_locale.h"

using namespace orbinex;

namespace {

using C = DAWCommand;

struct CommandCase {
    const char* text;
    C command;
};

TEST(DAWCommand, readsAndWritesEachKeyword) {
    const CommandCase cases[] = {
        {"SYNC", {C::RequestSnapshot{}}},
        {"VOL|3|-6.5", {C::SetTrackVolume{3, -6.5}}},
        {"PAN|2|-100", {C::SetTrackPan{2, -100}}},
        {"MUTE|0|1", {C::SetTrackMute{0, true}}},
        {"SOLO|-4|0", {C::SetTrackSolo{-4, false}}},
        {"ARM|9223372036854775807|1", {C::SetTrackArmOrLock{INT64_MAX, true}}},
        {"VISO|2|1|80", {C::SetVoiceIsolation{2, true, 80}}},
        {"DLEV|1|1|2.5", {C::SetDialogueLeveler{1, true, 2.5}}},
        {"LINK|1", {C::SetClipsLinked{true}}},
        {"PAGE|Color", {C::OpenPage{"Color"}}},
        {"PAGE|", {C::OpenPage{""}}},
        {"TC|01:02:03:04", {C::SetTimecode{"01:02:03:04"}}},
        {"CDL|2|0.1|0|0|1.2|1|1|1|1", {C::SetColorCDL{2, 0.1, 0, 0, 1.2, 1, 1, 1, 1}}},
        {"CDL|1|1|2|3|4|5|6|7|8", {C::SetColorCDL{1, 1, 2, 3, 4, 5, 6, 7, 8}}},
        {"NEN|5|0", {C::SetColorNodeEnabled{5, false}}},
        {"SEL|7", {C::SelectTrack{7}}},
    };
    for (const auto& [text, command] : cases) {
        EXPECT_EQ(C::decode(text), command) << text;
        EXPECT_EQ(command.encode(), text);
    }
}

TEST(DAWCommand, fallsBackToTheDefaultOfAFieldThatDoesNotParse) {
    const CommandCase cases[] = {
        {"VOL|x|y", {C::SetTrackVolume{1, 0}}},
        {"VOL| 3| -6", {C::SetTrackVolume{1, 0}}},
        {"VOL|1.0|-6,5", {C::SetTrackVolume{1, 0}}},
        {"VOL|9223372036854775808|1e999", {C::SetTrackVolume{1, std::numeric_limits<double>::infinity()}}},
        {"PAN||", {C::SetTrackPan{1, 0}}},
        {"MUTE|x|true", {C::SetTrackMute{1, false}}},
        {"SOLO|2|01", {C::SetTrackSolo{2, false}}},
        {"VISO|2|1|", {C::SetVoiceIsolation{2, true, 50}}},
        {"DLEV||1|loud", {C::SetDialogueLeveler{1, true, 0}}},
        {"LINK|", {C::SetClipsLinked{false}}},
        {"CDL|||||||||", {C::SetColorCDL{1, 0, 0, 0, 1, 1, 1, 1, 1}}},
        {"NEN||1", {C::SetColorNodeEnabled{1, true}}},
        {"SEL|", {C::SelectTrack{1}}},
        {"SEL|0", {C::SelectTrack{1}}},
        {"SEL|-9223372036854775808", {C::SelectTrack{1}}},
        // Fields beyond those of the keyword do not matter.
        {"SYNC|x", {C::RequestSnapshot{}}},
        {"TC|a|b", {C::SetTimecode{"a"}}},
        {"VOL|+3|+0x1p1|", {C::SetTrackVolume{3, 2}}},
    };
    for (const auto& [text, command] : cases) EXPECT_EQ(C::decode(text), command) << text;
}

TEST(DAWCommand, isNothingWithAnUnknownKeywordOrTooFewFields) {
    for (const char* const text : {"",           "|",      "mute|1|1", " SYNC",    "SYNC ",
                                   "VOLUME|1|2", "VO|1|2", "VOL",      "VOL|3",    "PAN|3",
                                   "MUTE|1",     "SOLO|1", "ARM|1",    "VISO|1|1", "DLEV|1|1",
                                   "LINK",       "PAGE",   "TC",       "CDL|2",    "CDL|2|0|0|0|1|1|1|1",
                                   "NEN|1",      "SEL"}) {
        EXPECT_FALSE(C::decode(text)) << text;
    }
}

TEST(DAWCommand, keepsASeparatorInATextFromSplittingIt) {
    EXPECT_EQ(C{C::OpenPage{"a|b||"}}.encode(), "PAGE|ab");
}

TEST(DAWCommand, isTheSameWhereTheUserWritesACommaForThePoint) {
    const test::CommaLocale german;
    EXPECT_EQ((C{C::SetTrackVolume{1234, -6.5}}.encode()), "VOL|1234|-6.5");
    EXPECT_EQ(C::decode("VOL|1234|-6.5"), (C{C::SetTrackVolume{1234, -6.5}}));
}

}  // namespace
