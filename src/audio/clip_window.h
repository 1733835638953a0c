#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "audio/resolve_track_clip_meta.h"

namespace orbinex {

/// Where the playhead stands, and how it moves.
struct PlayheadPosition {
    /// Timeline frame at which it was when it was last reported.
    std::int64_t frame = 0;
    /// Seconds that it has moved since by its own; negative when it plays backwards.
    double extrapolation = 0;
    bool isPlaying = false;
    /// Video frames a second, at least 1.
    double framesPerSecond = 24;
};

/// How far the playhead has moved, in seconds of the timeline, since it was reported: at most 0.15 s times
/// the speed that the label stands for; 0 when it does not play.
double playheadExtrapolation(bool isPlaying, std::string_view playbackSpeed,
                             std::chrono::nanoseconds elapsed);

/// Which samples of a clip's media are heard under the playhead. Frames here are sample frames.
struct ClipWindow {
    /// The sample under the playhead; negative before the media's beginning.
    std::int64_t centre = 0;
    /// Samples in one video frame, at least 512.
    std::int64_t samplesPerFrame = 512;
    /// What the level is measured over. While paused it wanders through the video frame's samples, so that a
    /// standing playhead shows a living level.
    std::int64_t start = 0;
    std::size_t frames = 0;

    friend bool operator==(const ClipWindow&, const ClipWindow&) = default;
};

/// `sampleRate` in Hz, above 0 and finite; `pausedStep` counts up call by call. Positions that no file
/// reaches are limited to 2^61 either way.
ClipWindow clipWindow(const ResolveTrackClipMeta& clip, const PlayheadPosition& playhead, double sampleRate,
                      int pausedStep);

}  // namespace orbinex
