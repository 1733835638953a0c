#include "audio/ffmpeg/frame_placement.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace orbinex {

namespace {

TEST(FramePlacement, restoresWhatCoarseTimestampsRoundAway) {
    const struct {
        TimeBase timeBase;
        int sampleRate;
        std::int64_t step;
        std::int64_t skipped;
    } rows[] = {{{1, 1000}, 44100, 1024, 1024}, {{1, 1000}, 96000, 4608, 0},
                {{1, 1000}, 48000, 120, 312},   {{1, 90000}, 44100, 1024, 0},
                {{1, 44100}, 44100, 1024, 17},  {{1, 14112000}, 44100, 1152, 1105},
                {{1, 24000}, 48000, 2048, 0}};
    for (const auto& row : rows) {
        const double ticks =
            static_cast<double>(row.timeBase.denominator) / row.timeBase.numerator / row.sampleRate;
        const std::int64_t first = -21;
        const FramePlacement placement(row.timeBase, row.sampleRate, first, row.skipped, row.step);
        std::optional<std::int64_t> expected;
        for (std::int64_t frame = 0; frame < 400'000; frame += frame < 1000 ? 1 : 997) {
            const auto start = frame * row.step;
            const auto timestamp = first + std::llround(static_cast<double>(start) * ticks);
            ASSERT_EQ(placement.position(timestamp, std::nullopt), start - row.skipped) << row.sampleRate;
            ASSERT_EQ(placement.position(timestamp, start - row.skipped), start - row.skipped)
                << row.sampleRate;
            ASSERT_LE(placement.timestampBefore(start - row.skipped), timestamp);
        }
    }
}

TEST(FramePlacement, leavesGapsWhereTheyAre) {
    const FramePlacement placement({1, 1000}, 48000, 0, 0, 960);
    EXPECT_EQ(placement.position(500, 9600), 24000);
    EXPECT_EQ(placement.position(201, 9600), 9600);
}

TEST(FramePlacement, bearsAnyTimestamp) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    for (const auto first : {least, most, std::int64_t{0}}) {
        const FramePlacement placement({1, 1000}, 192000, first, 1024, 1024);
        for (const auto timestamp : {least, most, std::int64_t{0}}) {
            EXPECT_LT(std::abs(placement.position(timestamp, std::nullopt)), most / 8);
            EXPECT_LT(std::abs(placement.position(timestamp, 5)), most / 8);
            EXPECT_LT(std::abs(placement.timestampBefore(timestamp)), most / 4);
        }
    }
}

}  // namespace

}  // namespace orbinex
