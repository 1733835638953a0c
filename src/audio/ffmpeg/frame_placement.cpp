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

/// True when every frame of samples has timestamps of its own.
bool tellsFramesApart(TimeBase timeBase, int sampleRate) {
    return timeBase.denominator % (std::int64_t{timeBase.numerator} * sampleRate) == 0;
}

std::int64_t nearestMultiple(std::int64_t value, std::int64_t step) {
    const std::int64_t half = value >= 0 ? step / 2 : -(step / 2);
    return (value + half) / step * step;
}

}  // namespace

FramePlacement::FramePlacement(TimeBase timeBase, int sampleRate, std::int64_t firstTimestamp,
                               std::int64_t skipped, std::int64_t step)
    : timeBase_(timeBase),
      sampleRate_(sampleRate),
      firstTimestamp_(firstTimestamp),
      skipped_(skipped),
      step_(tellsFramesApart(timeBase, sampleRate) ? 1 : std::max<std::int64_t>(step, 1)),
      // Two timestamps make a distance, and each was rounded.
      tolerance_(step_ == 1 ? 0
                            : 2 + 2 * av_rescale_rnd(timeBase.numerator, sampleRate, timeBase.denominator,
                                                     AV_ROUND_UP)) {}

std::int64_t FramePlacement::position(std::int64_t timestamp, std::optional<std::int64_t> expected) const {
    const AVRational from{timeBase_.numerator, timeBase_.denominator};
    const AVRational to{1, sampleRate_};
    const auto distance = bounded(av_rescale_q(bounded(timestamp) - bounded(firstTimestamp_), from, to));
    const auto found = distance - skipped_;
    if (step_ == 1) return found;
    if (expected && std::abs(found - *expected) <= tolerance_) return *expected;
    return nearestMultiple(distance, step_) - skipped_;
}

std::int64_t FramePlacement::timestampBefore(std::int64_t position) const {
    const AVRational from{1, sampleRate_};
    const AVRational to{timeBase_.numerator, timeBase_.denominator};
    const auto ticks =
        av_rescale_q_rnd(bounded(position) + skipped_ - tolerance_ / 2, from, to, AV_ROUND_DOWN);
    return bounded(bounded(ticks) + bounded(firstTimestamp_));
}

}  // namespace orbinex
