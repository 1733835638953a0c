#include "editor_bridge/timecode.h"

#include <limits>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(NominalFrameRate, isAWholeNumberOfAtLeastOne) {
    const std::pair<double, std::int64_t> rows[] = {
        {23.976, 24}, {29.97, 30},    {59.94, 60},      {25, 25},
        {24.5, 25},   {1.2, 1},       {1, 24},          {0, 24},
        {-30, 24},    {infinity, 24}, {notANumber, 24}, {1e300, std::numeric_limits<std::int64_t>::max()},
    };
    for (const auto& [fps, rate] : rows) EXPECT_EQ(nominalFrameRate(fps), rate) << fps;
}

TEST(Timecode, isReadAsAFrameCount) {
    const struct {
        const char* timecode;
        double fps;
        std::optional<TimecodeFrames> expected;
    } rows[] = {
        {"01:00:00:00", 24, TimecodeFrames{86'400, false}},
        {"00:00:01:05", 23.976, TimecodeFrames{29, false}},
        {"01:00:00;02", 29.97, TimecodeFrames{108'002, true}},
        {"01;00;00;00", 60, TimecodeFrames{216'000, true}},
        {"00:00:00:99", 25, TimecodeFrames{24, false}},
        {"-1:-2:03:-4", 25, TimecodeFrames{75, false}},
        {"00:00:00:00", notANumber, TimecodeFrames{0, false}},
        {"::1:2::3:4:", 25, TimecodeFrames{93'079, false}},
        {"1:2:x:3:4", 25, TimecodeFrames{93'079, false}},
        {"+1:+2:+3:+4", 25, TimecodeFrames{93'079, false}},
        {"1:2:3:4:5", 25, std::nullopt},
        {"1:2:3", 25, std::nullopt},
        {"aa:00:00:00", 25, std::nullopt},
        {"1: 2:3:4", 25, std::nullopt},
        {"", 25, std::nullopt},
        {";", 25, std::nullopt},
        {"9223372036854775807:00:00:00", 25, std::nullopt},
        {"99999999999999999999:0:0:0", 25, std::nullopt},
        {"0:0:9223372036854775807:9223372036854775807", 2, std::nullopt},
        {"0:0:2:9223372036854775807", 1e300, std::nullopt},
        {"0:0:0:9223372036854775807", 1e300,
         TimecodeFrames{std::numeric_limits<std::int64_t>::max() - 1, false}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(timecodeToFrames(row.timecode, row.fps), row.expected) << row.timecode << " at " << row.fps;
    }
}

TEST(Timecode, isWrittenFromAFrameCount) {
    const struct {
        std::int64_t frames;
        bool isDropFrame;
        double fps;
        const char* expected;
    } rows[] = {
        {86'399, false, 24, "00:59:59:23"}, {108'002, true, 29.97, "01:00:00;02"},
        {-5, false, 25, "00:00:00:00"},     {360'000 * 25LL + 7, false, 25, "00:00:00:07"},
        {150, false, 120, "00:00:01:30"},   {119, false, 120, "00:00:00:119"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(framesToTimecode(row.frames, row.isDropFrame, row.fps), row.expected);
    }
}

}  // namespace
}  // namespace orbinex
