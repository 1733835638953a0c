#include "editor_bridge/playback_tracker.h"

#include <utility>

#include "editor_bridge/timecode.h"
#include "protocol/playback_speed.h"

namespace orbinex {

std::string_view playbackSpeedLabel(double rate) {
    constexpr double fast = 1.4;
    if (rate < -fast) return PlaybackSpeed::fastBackward;
    if (rate < 0) return PlaybackSpeed::backward;
    return rate <= fast ? PlaybackSpeed::forward : PlaybackSpeed::fastForward;
}

PlaybackTracker::Step PlaybackTracker::observe(std::string_view from, std::string_view to, double fps,
                                               Uptime now) {
    if (from == to) return {};
    const auto before = timecodeToFrames(from, fps);
    const auto after = timecodeToFrames(to, fps);
    if (!before || !after || before->frames == after->frames) return {};
    const auto elapsed = now - std::exchange(lastFrameAdvanceTime_, now);
    if (elapsed <= shortestStep || elapsed >= longestStep) return {Movement::jumped, {}};
    const double seconds = std::chrono::duration<double>(elapsed).count();
    const auto frames = static_cast<double>(after->frames - before->frames);
    return {Movement::played, playbackSpeedLabel(frames / (fps * seconds))};
}

}  // namespace orbinex
