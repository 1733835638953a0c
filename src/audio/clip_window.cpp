#include "audio/clip_window.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "protocol/playback_speed.h"

namespace orbinex {

namespace {

constexpr double longestExtrapolation = 0.15;
constexpr std::size_t playingWindow = 1024;
constexpr std::size_t pausedWindow = 512;
constexpr std::int64_t pausedStride = 256;
constexpr std::int64_t fewestSamplesPerFrame = 512;
constexpr std::int64_t mostSamplesPerFrame = std::int64_t{1} << 40;
/// Far past every file's end, and far from the limits of the type.
constexpr double furthest = 0x1p61;

double speedFactor(std::string_view playbackSpeed) {
    if (playbackSpeed == PlaybackSpeed::fastBackward) return -2;
    if (playbackSpeed == PlaybackSpeed::backward) return -1;
    if (playbackSpeed == PlaybackSpeed::fastForward) return 2;
    return 1;
}

std::int64_t roundedSample(double position) {
    return static_cast<std::int64_t>(std::clamp(std::round(position), -furthest, furthest));
}

/// The sum, limited to what the type holds.
std::int64_t limitedSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return a < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}
std::int64_t limitedDifference(std::int64_t a, std::int64_t b) {
    std::int64_t difference = 0;
    if (!__builtin_sub_overflow(a, b, &difference)) return difference;
    return a < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

}  // namespace

double playheadExtrapolation(bool isPlaying, std::string_view playbackSpeed,
                             std::chrono::nanoseconds elapsed) {
    if (!isPlaying) return 0;
    const double seconds = std::chrono::duration<double>(elapsed).count();
    return std::clamp(seconds, 0.0, longestExtrapolation) * speedFactor(playbackSpeed);
}

ClipWindow clipWindow(const ResolveTrackClipMeta& clip, const PlayheadPosition& playhead, double sampleRate,
                      int pausedStep) {
    const std::int64_t intoClip =
        std::max<std::int64_t>(limitedDifference(playhead.frame, clip.clipStartFrame), 0);
    const auto sourceFrame = static_cast<double>(limitedSum(clip.sourceStartFrame, intoClip));
    ClipWindow window;
    window.samplesPerFrame = std::clamp(roundedSample(sampleRate / playhead.framesPerSecond),
                                        fewestSamplesPerFrame, mostSamplesPerFrame);
    window.centre =
        roundedSample((playhead.extrapolation + sourceFrame / playhead.framesPerSecond) * sampleRate);
    window.frames = playhead.isPlaying ? playingWindow : pausedWindow;
    const std::int64_t offset =
        playhead.isPlaying ? 0 : pausedStep * pausedStride % (window.samplesPerFrame - pausedStride);
    window.start = std::max<std::int64_t>(window.centre + offset, 0);
    return window;
}

}  // namespace orbinex
