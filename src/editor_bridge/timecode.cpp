#include "editor_bridge/timecode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "base/numbers.h"

namespace orbinex {

namespace {

constexpr std::int64_t defaultRate = 24;
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

/// a * b + c of numbers that are not negative; nothing beyond 64 bits.
std::optional<std::int64_t> scaled(std::optional<std::int64_t> a, std::int64_t b, std::int64_t c) {
    if (!a || (b != 0 && *a > (largest - c) / b)) return std::nullopt;
    return *a * b + c;
}

std::string twoDigits(std::int64_t value) {
    std::string digits = std::to_string(value);
    return digits.size() < 2 ? '0' + digits : digits;
}

}  // namespace

std::int64_t nominalFrameRate(double fps) {
    if (!std::isfinite(fps) || fps <= 1) return defaultRate;
    // 2^63 is the first whole number that does not fit.
    if (fps >= 0x1p63) return largest;
    return static_cast<std::int64_t>(std::round(fps));
}

std::optional<TimecodeFrames> timecodeToFrames(std::string_view timecode, double fps) {
    const bool isDropFrame = timecode.find(';') != std::string_view::npos;
    std::array<std::int64_t, 4> groups{};
    std::size_t count = 0;
    while (!timecode.empty()) {
        const std::size_t end = std::min(timecode.find_first_of(":;"), timecode.size());
        if (const auto number = parseInteger(timecode.substr(0, end))) {
            if (count == groups.size()) return std::nullopt;
            groups[count++] = std::max<std::int64_t>(*number, 0);
        }
        timecode.remove_prefix(std::min(end + 1, timecode.size()));
    }
    if (count != groups.size()) return std::nullopt;
    const auto [hours, minutes, seconds, frame] = groups;
    const std::int64_t rate = nominalFrameRate(fps);
    const auto total =
        scaled(scaled(scaled(hours, 60, minutes), 60, seconds), rate, std::min(frame, rate - 1));
    return total ? std::optional(TimecodeFrames{*total, isDropFrame}) : std::nullopt;
}

std::string framesToTimecode(std::int64_t frames, bool isDropFrame, double fps) {
    const std::int64_t count = std::max<std::int64_t>(frames, 0);
    const std::int64_t rate = nominalFrameRate(fps);
    const std::int64_t seconds = count / rate;
    return twoDigits(seconds / 3600 % 100) + ':' + twoDigits(seconds / 60 % 60) + ':' +
           twoDigits(seconds % 60) + (isDropFrame ? ';' : ':') + twoDigits(count % rate);
}

std::optional<std::int64_t> steppedFrame(std::int64_t frame, int step) {
    if (step > 0 && frame > largest - step) return std::nullopt;
    return std::max<std::int64_t>(frame + step, 0);
}

}  // namespace orbinex
