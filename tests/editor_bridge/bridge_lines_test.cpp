#include "editor_bridge/bridge_lines.h"

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(TimecodeLine, isReadFieldByField) {
    const struct {
        const char* line;
        std::optional<TimecodeLine> expected;
    } rows[] = {
        {"OXTC|01:00:00:00|24|RESOLVE 19.1|Cut 3|edit|1|86400",
         TimecodeLine{"01:00:00:00", 24, "RESOLVE 19.1", "Cut 3", "edit", true, 86'400}},
        {"OXTC| 01:00:00;02 |29.97 DF|||color|0|0",
         TimecodeLine{"01:00:00;02", 29.97, "RESOLVE", "Timeline", "color", false, std::nullopt}},
        {"OXTC|x|fast|a|b|", TimecodeLine{"x", 24, "a", "b", "EDIT", std::nullopt, std::nullopt}},
        {"OXTC|x|1 DF2 DF |a|b|c|yes|-1", TimecodeLine{"x", 12, "a", "b", "c", std::nullopt, std::nullopt}},
        {"OXTC|x|inf|a|b|c|-2|9223372036854775808|more",
         TimecodeLine{"x", 24, "a", "b", "c", true, std::nullopt}},
        {"OXTC|x|nan|a|b|c||9223372036854775807",
         TimecodeLine{"x", 24, "a", "b", "c", std::nullopt, 9'223'372'036'854'775'807}},
        {"OXTC|  |24|a|b|c|1|1", std::nullopt},
        {"OXTC|x|24|a|b", std::nullopt},
    };
    for (const auto& row : rows) EXPECT_EQ(parseTimecodeLine(row.line), row.expected) << row.line;
}

TEST(HeaderLine, isReadFieldByField) {
    const struct {
        const char* line;
        std::optional<HeaderLine> expected;
    } rows[] = {
        {"OXHDR|3|0|Shot 12|5", HeaderLine{3, false, "Shot 12", 5}},
        {"OXHDR||||", HeaderLine{1, true, "Timeline Clip", 1}},
        {"OXHDR|-4|7|a|-9|more", HeaderLine{1, true, "a", 1}},
        {"OXHDR|1.5|x|a|two", HeaderLine{1, true, "a", 1}},
        {"OXHDR|3|0|Shot 12", std::nullopt},
    };
    for (const auto& row : rows) EXPECT_EQ(parseHeaderLine(row.line), row.expected) << row.line;
}

TEST(TrackLine, isReadFieldByField) {
    const TrackLine whole{.index = 2,
                          .totalTracks = 3,
                          .name = "Dialogue",
                          .clipName = "Take 1",
                          .format = "5.1",
                          .isMuted = true,
                          .isLocked = true,
                          .volumeDB = -6.25,
                          .pan = -30.5,
                          .voiceIsolationEnabled = true,
                          .voiceIsolationAmount = 80,
                          .dialogueLevelerEnabled = true,
                          .dialogueLevelerGainDB = 1.5,
                          .hasActiveClip = true,
                          .clipUID = "2_86400",
                          .clipStartFrame = 86'400,
                          .sourceStartFrame = 12,
                          .filePath = "/media/take 1.wav"};
    const TrackLine bare{.index = 1, .totalTracks = 1, .clipName = "Empty", .format = "STEREO"};
    TrackLine namedClip = bare;
    namedClip.clipName = "[Take 1]";
    namedClip.hasActiveClip = true;
    TrackLine wild = bare;
    wild.index = wild.totalTracks = 9'223'372'036'854'775'807;
    wild.volumeDB = -96;
    wild.voiceIsolationAmount = 100;
    wild.hasActiveClip = true;
    TrackLine loud = bare;
    loud.volumeDB = 12;
    loud.voiceIsolationAmount = 0;
    loud.pan = -1e300;

    const struct {
        const char* line;
        std::optional<TrackLine> expected;
    } rows[] = {
        {"OXTRK|2|3|Dialogue|Take 1|5.1|0|1|-6.25|-30.5|1|80|1|1.5|1|2_86400|86400|12| /media/take 1.wav ",
         whole},
        {"OXTRK|1||||||||||||", bare},
        {"OXTRK|1|-7||Empty||1|0|0.00|0.0|0|65|0|0.0", bare},
        {"OXTRK|1|1||[Take 1]||x|y|z|z|z|z|z|z", namedClip},
        {"OXTRK|9223372036854775807|1||Empty|||0|nan|inf|0|1000|0|-inf|1||x|9223372036854775808|", wild},
        {"OXTRK|1|1||Empty||||1e9|-1e300||-5|0|nan||||", loud},
        {"OXTRK|0|1||Empty||1|0|0.00|0.0|0|65|0|0.0", std::nullopt},
        {"OXTRK|-1|1||Empty||1|0|0.00|0.0|0|65|0|0.0", std::nullopt},
        {"OXTRK|x|1||Empty||1|0|0.00|0.0|0|65|0|0.0", std::nullopt},
        {"OXTRK|1|1||Empty||1|0|0.00|0.0|0|65|0", std::nullopt},
    };
    for (const auto& row : rows) EXPECT_EQ(parseTrackLine(row.line), row.expected) << row.line;
}

}  // namespace
}  // namespace orbinex
