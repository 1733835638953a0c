#include "audio/ffmpeg/step_pattern.h"

#include <algorithm>

namespace orbinex {

std::span<const std::int64_t> stepPattern(std::span<const std::int64_t> steps) {
    for (std::size_t length = 1; 2 * length <= steps.size(); ++length)
        if (std::ranges::equal(steps.subspan(length), steps.first(steps.size() - length)))
            return steps.first(length);
    return {};
}

}  // namespace orbinex
