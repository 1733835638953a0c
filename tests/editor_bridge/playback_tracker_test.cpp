#include "editor_bridge/playback_tracker.h"

#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Movement = PlaybackTracker::Movement;

TEST(PlaybackTracker, tellsASpeedFromTwoStepsThatAreCloseTogether) {
    const struct {
        const char* what;
        const char* from;
        const char* to;
        double fps;
        std::chrono::nanoseconds sinceLastStep;
        PlaybackTracker::Step expected;
    } rows[] = {
        {"normal", "01:00:00:00", "01:00:00:01", 24, 33ms, {Movement::played, "1X"}},
        {"exactly at the border", "01:00:00:00", "01:00:00:07", 25, 200ms, {Movement::played, "1X"}},
        {"fast", "01:00:00:01", "01:00:00:03", 24, 33ms, {Movement::played, "+2X"}},
        {"backward", "01:00:00:02", "01:00:00:01", 25, 40ms, {Movement::played, "-1X"}},
        {"backward at the border", "01:00:00:07", "01:00:00:00", 25, 200ms, {Movement::played, "-1X"}},
        {"fast backward", "01:00:00:08", "01:00:00:00", 25, 200ms, {Movement::played, "-2X"}},
        {"by the new line's rate", "00:00:00:59", "00:00:01:00", 60, 16ms, {Movement::played, "1X"}},
        {"slow", "00:00:00:00", "00:00:00:01", 60, 249ms, {Movement::played, "1X"}},
        {"after a pause", "00:00:00:00", "00:00:00:01", 24, 250ms, {Movement::jumped, ""}},
        {"too soon", "00:00:00:00", "00:00:00:01", 24, 10ms, {Movement::jumped, ""}},
        {"just not too soon", "00:00:00:00", "00:00:00:01", 100, 10'000'001ns, {Movement::played, "1X"}},
        {"the same", "00:00:00:01", "00:00:00:01", 24, 33ms, {}},
        {"the same frame, written otherwise", "00:00:00:01", "00:00:00;01", 24, 33ms, {}},
        {"to what is no timecode", "00:00:00:01", "---", 24, 33ms, {}},
        {"from what is none", "", "00:00:00:01", 24, 33ms, {}},
        {"at no rate", "00:00:00:00", "00:00:01:00", 0, 33ms, {Movement::played, "+2X"}},
    };
    for (const auto& row : rows) {
        PlaybackTracker tracker;
        EXPECT_EQ(tracker.observe("09:00:00:00", "09:00:00:01", 24, 5s).movement, Movement::jumped);
        EXPECT_EQ(tracker.observe(row.from, row.to, row.fps, 5s + row.sinceLastStep), row.expected)
            << row.what;
    }
}

}  // namespace
}  // namespace orbinex
