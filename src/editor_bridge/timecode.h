#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orbinex {

/// Frames are counted nominally: a second has as many as the nominal rate says, also in drop-frame timecode,
/// whose missing numbers are not made up for.
struct TimecodeFrames {
    std::int64_t frames = 0;
    bool isDropFrame = false;

    friend bool operator==(const TimecodeFrames&, const TimecodeFrames&) = default;
};

/// Frames a second, rounded to a whole number, such as 30 for 29.97. 24 for rates up to 1 and for what is not
/// finite. At least 1.
std::int64_t nominalFrameRate(double fps);

/// Reads hours, minutes, seconds and frames, separated by ":" or ";" (which means drop-frame); pieces that
/// are not whole numbers are passed over. Negative groups count as 0, frames are limited to the rate. Nothing
/// when there are not four numbers, or when 64 bits cannot hold the count. Allocates nothing.
std::optional<TimecodeFrames> timecodeToFrames(std::string_view timecode, double fps);

/// Two digits each for hours (modulo 100), minutes, seconds and frames; ";" before the frames when
/// drop-frame, else ":". Negative counts are 0.
std::string framesToTimecode(std::int64_t frames, bool isDropFrame, double fps);

/// One frame on (1) or back (-1), not below 0; nothing when 64 bits cannot hold it. The frame is not
/// negative.
std::optional<std::int64_t> steppedFrame(std::int64_t frame, int step);

}  // namespace orbinex
