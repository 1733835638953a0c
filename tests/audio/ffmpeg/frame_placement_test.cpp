#include "audio/ffmpeg/frame_placement.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "audio/ffmpeg/step_pattern.h"

namespace orbinex {

namespace {

TEST(FramePlacement, restoresWhatCoarseTimestampsRoundAway) {
    const struct {
        TimeBase timeBase;
        int sampleRate;
        std::vector<std::int64_t> steps;
        std::int64_t skipped;
    } rows[] = {{{1, 1000}, 44100, {1024}, 1024},
                {{1, 1000}, 96000, {4608}, 0},
                {{1, 1000}, 48000, {120}, 312},
                {{1, 1000}, 48000, {1602, 1601, 1602, 1601, 1602}, 0},
                {{1, 1000}, 48000, {1024, 896, 100}, 17},
                {{1, 90000}, 44100, {1024}, 0},
                {{1, 44100}, 44100, {1024}, 17},
                {{1, 14112000}, 44100, {1152}, 1105},
                {{1, 24000}, 48000, {2048}, 0}};
    for (const auto& row : rows) {
        const double ticks =
            static_cast<double>(row.timeBase.denominator) / row.timeBase.numerator / row.sampleRate;
        const std::int64_t first = -21;
        const FramePlacement placement(row.timeBase, row.sampleRate, first, row.skipped, row.steps);
        std::int64_t start = 0;
        for (std::size_t frame = 0; frame < 100'000; ++frame) {
            const auto timestamp = first + std::llround(static_cast<double>(start) * ticks);
            ASSERT_EQ(placement.position(timestamp, std::nullopt), start - row.skipped) << row.sampleRate;
            ASSERT_EQ(placement.position(timestamp, start - row.skipped), start - row.skipped)
                << row.sampleRate;
            ASSERT_LE(placement.timestampBefore(start - row.skipped), timestamp);
            start += row.steps[frame % row.steps.size()];
        }
    }
}

TEST(FramePlacement, findsThePatternThatStepsRepeat) {
    const struct {
        std::vector<std::int64_t> steps;
        std::size_t length;
    } rows[] = {{{}, 0},
                {{5}, 0},
                {{5, 5}, 1},
                {{5, 6}, 0},
                {{1602, 1601, 1602, 1601, 1602, 1602, 1601, 1602, 1601, 1602, 1602}, 5},
                {{1602, 1601, 1602, 1601, 1602, 1602, 1601, 1602, 1601}, 0},
                {{1, 2, 1, 2, 1, 3}, 0}};
    for (const auto& row : rows) EXPECT_EQ(stepPattern(row.steps).size(), row.length) << row.steps.size();
}

TEST(FramePlacement, leavesGapsWhereTheyAre) {
    const std::int64_t steps[] = {960};
    const FramePlacement placement({1, 1000}, 48000, 0, 0, steps);
    EXPECT_EQ(placement.position(500, 9600), 24000);
    EXPECT_EQ(placement.position(201, 9600), 9600);
}

TEST(FramePlacement, bearsAnyTimestamp) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const std::int64_t steps[] = {1024, 1000};
    for (const auto first : {least, most, std::int64_t{0}}) {
        const FramePlacement placement({1, 1000}, 192000, first, 1024, steps);
        for (const auto timestamp : {least, most, std::int64_t{0}}) {
            EXPECT_LT(std::abs(placement.position(timestamp, std::nullopt)), most / 8);
            EXPECT_LT(std::abs(placement.position(timestamp, 5)), most / 8);
            EXPECT_LT(std::abs(placement.timestampBefore(timestamp)), most / 4);
        }
    }
}

}  // namespace

}  // namespace orbinex
