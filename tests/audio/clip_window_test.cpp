#include "audio/clip_window.h"

#include <gtest/gtest.h>

namespace orbinex {

void PrintTo(const ClipWindow& window, std::ostream* out) {
    *out << "centre " << window.centre << " step " << window.samplesPerFrame << " start " << window.start
         << " + " << window.frames;
}

namespace {

using namespace std::chrono_literals;

TEST(PlayheadExtrapolation, goesBySpeedAndForAtMost150ms) {
    const struct {
        bool isPlaying;
        const char* speed;
        std::chrono::nanoseconds elapsed;
        double seconds;
    } rows[] = {
        {true, "1X", 100ms, 0.1},   {true, "+2X", 100ms, 0.2},  {true, "-1X", 100ms, -0.1},
        {true, "-2X", 100ms, -0.2}, {true, "2X", 100ms, 0.1},   {true, "", 100ms, 0.1},
        {true, "1X", 1h, 0.15},     {true, "-2X", 151ms, -0.3}, {true, "1X", -1s, 0},
        {false, "1X", 100ms, 0},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(playheadExtrapolation(row.isPlaying, row.speed, row.elapsed), row.seconds, 1e-12)
            << row.speed << " " << row.elapsed.count();
}

TEST(ClipWindow, liesWhereThePlayheadStandsInTheMedia) {
    const struct {
        std::int64_t clipStart, sourceStart;
        PlayheadPosition playhead;
        double sampleRate;
        int step;
        ClipWindow window;
    } rows[] = {
        // Playing: at the playhead. 10 frames into a clip that begins with the media's frame 24.
        {86'400, 24, {86'410, 0, true, 24}, 48'000, 7, {68'000, 2000, 68'000, 1024}},
        // With the way since the last report.
        {86'400, 24, {86'410, 0.1, true, 24}, 48'000, 7, {72'800, 2000, 72'800, 1024}},
        {86'400, 24, {86'410, -0.3, true, 24}, 48'000, 7, {53'600, 2000, 53'600, 1024}},
        // Before the clip's start counts as at it; before the media's beginning reads from it.
        {86'400, 24, {86'000, 0, true, 24}, 48'000, 7, {48'000, 2000, 48'000, 1024}},
        {86'400, 0, {86'400, -0.3, true, 24}, 48'000, 7, {-14'400, 2000, 0, 1024}},
        {86'400, -48, {86'400, 0, true, 24}, 48'000, 7, {-96'000, 2000, 0, 1024}},
        // Other rates: 44100 / 23.976 = 1839.3, and 1000 frames of it are 41.70838 s.
        {0, 0, {1000, 0, true, 23.976}, 44'100, 7, {1'839'339, 1839, 1'839'339, 1024}},
        // Many video frames a second: a frame still has 512 samples.
        {0, 0, {120, 0, true, 120}, 48'000, 7, {48'000, 512, 48'000, 1024}},
        // Paused: the window steps through the frame's samples by 256, round after 2000 - 256.
        {0, 24, {0, 0, false, 24}, 48'000, 0, {48'000, 2000, 48'000, 512}},
        {0, 24, {0, 0, false, 24}, 48'000, 6, {48'000, 2000, 49'536, 512}},
        {0, 24, {0, 0, false, 24}, 48'000, 7, {48'000, 2000, 48'048, 512}},
        {0, 24, {0, 0, false, 24}, 48'000, 32'767, {48'000, 2000, 48'000 + 32'767 * 256 % 1744, 512}},
    };
    for (const auto& row : rows) {
        const ResolveTrackClipMeta clip{.clipStartFrame = row.clipStart, .sourceStartFrame = row.sourceStart};
        EXPECT_EQ(clipWindow(clip, row.playhead, row.sampleRate, row.step), row.window);
    }
}

}  // namespace
}  // namespace orbinex
