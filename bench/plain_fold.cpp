#include "plain_fold.h"

#include <algorithm>
#include <cmath>

namespace orbinex {

namespace {

template <class Sample>
MonoRead fold(const Sample* samples, std::size_t frames, float* mono, float unit) {
    float peak = 0;
    float squares = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const float left = static_cast<float>(samples[2 * i]) * unit;
        const float right = static_cast<float>(samples[2 * i + 1]) * unit;
        mono[i] = (left + right) * 0.5F;
        squares += (left * left + right * right) * 0.5F;
        peak = std::max({peak, std::fabs(left), std::fabs(right)});
    }
    return {frames, peak, std::sqrt(squares / static_cast<float>(frames))};
}

}  // namespace

MonoRead plainFold(const float* samples, std::size_t frames, float* mono) {
    return fold(samples, frames, mono, 1);
}
MonoRead plainFold(const std::int16_t* samples, std::size_t frames, float* mono) {
    return fold(samples, frames, mono, 1.0F / 32'768);
}

}  // namespace orbinex
