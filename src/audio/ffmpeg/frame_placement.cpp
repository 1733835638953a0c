#include "audio/ffmpeg/frame_placement.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace orbinex {

namespace {

/// Positions beyond this are no file's; sums of a few of them cannot overflow.
constexpr std::int64_t farthest = std::numeric_limits<std::int64_t>::max() / 16;

std::int64_t bounded(std::int64_t value) {
    return std::clamp(value, -farthest, farthest);
}

}  // namespace

FramePlacement::FramePlacement(TimeBase timeBase, int sampleRate, std::int64_t firstTimestamp,
                               std::int64_t skipped, std::span<const std::int64_t> steps,
                               std::int64_t lateness)
    : timeBase_(timeBase),
      sampleRate_(sampleRate),
      lateness_(lateness),
      firstTimestamp_(firstTimestamp),
      skipped_(skipped) {
    if (!needsSteps(timeBase, sampleRate)) return;
    // Two timestamps make a distance, and each was rounded.
    tolerance_ = 2 + 2 * av_rescale_rnd(timeBase.numerator, sampleRate, timeBase.denominator, AV_ROUND_UP);
    if (steps.empty()) return;
    beginnings_.push_back(0);
    for (const auto step : steps) beginnings_.push_back(beginnings_.back() + step);
}

bool FramePlacement::needsSteps(TimeBase timeBase, int sampleRate) {
    return timeBase.denominator % (std::int64_t{timeBase.numerator} * sampleRate) != 0;
}

std::int64_t FramePlacement::position(std::int64_t timestamp, std::optional<std::int64_t> expected) const {
    const AVRational from{timeBase_.numerator, timeBase_.denominator};
    const AVRational to{1, sampleRate_};
    const auto distance = bounded(av_rescale_q(bounded(timestamp) - bounded(firstTimestamp_), from, to));
    const auto found = distance - skipped_;
    if (expected && found >= *expected - tolerance_ && found <= *expected + tolerance_ + lateness_)
        return *expected;
    return nearestBeginning(distance) - skipped_;
}

std::int64_t FramePlacement::nearestBeginning(std::int64_t distance) const {
    if (beginnings_.empty()) return distance;
    const auto round = beginnings_.back();
    const auto inRound = (distance % round + round) % round;
    const auto next = std::ranges::upper_bound(beginnings_, inRound);
    const auto nearest = *next - inRound <= inRound - *(next - 1) ? *next : *(next - 1);
    return distance - inRound + nearest;
}

std::int64_t FramePlacement::timestampBefore(std::int64_t position) const {
    const AVRational from{1, sampleRate_};
    const AVRational to{timeBase_.numerator, timeBase_.denominator};
    const auto ticks =
        av_rescale_q_rnd(bounded(position) + skipped_ - tolerance_ / 2, from, to, AV_ROUND_DOWN);
    return bounded(bounded(ticks) + bounded(firstTimestamp_));
}

}  // namespace orbinex
