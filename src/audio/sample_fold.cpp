#include "audio/sample_fold.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace orbinex {

namespace {

// Four lanes, which every 64-bit x86 and ARM has; the compiler's vector types need no intrinsics.
constexpr std::size_t lanes = 4;
using Floats = float __attribute__((vector_size(lanes * sizeof(float))));
using Ints = std::int32_t __attribute__((vector_size(lanes * sizeof(std::int32_t))));

Floats load(const float* samples) {
    Floats result;
    std::memcpy(&result, samples, sizeof result);
    return result;
}

/// Eight samples side by side as two vectors: those with even and those with odd numbers.
struct Pair {
    Floats even, odd;
};
Pair loadPairs(const float* samples) {
    const Floats first = load(samples);
    const Floats second = load(samples + lanes);
    return {__builtin_shufflevector(first, second, 0, 2, 4, 6),
            __builtin_shufflevector(first, second, 1, 3, 5, 7)};
}
Pair loadPairs(const std::int16_t* samples) {
    static_assert(std::endian::native == std::endian::little);
    Ints both;
    std::memcpy(&both, samples, sizeof both);
    // The shift to the left is one of bits; that to the right keeps the sign.
    using Bits = std::uint32_t __attribute__((vector_size(lanes * sizeof(std::uint32_t))));
    const auto low = reinterpret_cast<Ints>(reinterpret_cast<Bits>(both) << 16);
    return {__builtin_convertvector(low >> 16, Floats), __builtin_convertvector(both >> 16, Floats)};
}
void store(Floats value, float* to) {
    std::memcpy(to, &value, sizeof value);
}

Floats magnitude(Floats value) {
    Ints bits;
    std::memcpy(&bits, &value, sizeof bits);
    bits &= 0x7FFF'FFFF;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}
/// Lane by lane; a lane of `value` that is not a number leaves that of `largest`.
Floats larger(Floats value, Floats largest) {
    return value > largest ? value : largest;
}

/// What one sample of each type counts for.
constexpr float unit(const float*) {
    return 1;
}
constexpr float unit(const std::int16_t*) {
    return 1.0F / 32768;
}

/// The peak and the sum of squares so far, of samples in their own unit: powers of two, so nothing is rounded
/// differently from samples of full scale 1.
class Measure {
  public:
    void addFrames(Floats left, Floats right, std::size_t half) {
        peak_[half] = larger(magnitude(left), peak_[half]);
        peak_[half] = larger(magnitude(right), peak_[half]);
        squares_[half] += (left * left + right * right) * 0.5F;
    }
    void addFrame(float left, float right) {
        for (const float value : {std::fabs(left), std::fabs(right)})
            if (value > restPeak_) restPeak_ = value;
        restSquares_ += (left * left + right * right) * 0.5F;
    }
    [[nodiscard]] MonoRead result(std::size_t frames, float unit) const {
        if (frames == 0) return {};
        const Floats peaks = larger(peak_[0], peak_[1]);
        const Floats squares = squares_[0] + squares_[1];
        float peak = restPeak_;
        float sum = restSquares_;
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            if (peaks[lane] > peak) peak = peaks[lane];
            sum += squares[lane];
        }
        return {frames, peak * unit, std::sqrt(sum / static_cast<float>(frames)) * unit};
    }

  private:
    std::array<Floats, 2> peak_{};
    std::array<Floats, 2> squares_{};
    float restPeak_ = 0;
    float restSquares_ = 0;
};

/// Folds as many frames as `in` has in twos of eight samples, then the rest one by one. `Channels` is 1 or 2.
template <std::size_t Channels, class Sample>
MonoRead fold(std::span<const Sample> samples, std::span<float> mono) {
    constexpr float one = unit(static_cast<const Sample*>(nullptr));
    constexpr std::size_t framesAtOnce = 2 * lanes / Channels;
    const std::size_t frames = std::min(samples.size() / Channels, mono.size());
    const Sample* in = samples.data();
    float* out = mono.data();
    Measure measure;
    std::size_t frame = 0;
    for (; frame + 2 * framesAtOnce <= frames; frame += 2 * framesAtOnce) {
        for (std::size_t half = 0; half < 2; ++half, in += 2 * lanes, out += framesAtOnce) {
            const auto [even, odd] = loadPairs(in);
            if constexpr (Channels == 2) {
                store((even + odd) * (0.5F * one), out);
                measure.addFrames(even, odd, half);
            } else {
                store(__builtin_shufflevector(even, odd, 0, 4, 1, 5) * one, out);
                store(__builtin_shufflevector(even, odd, 2, 6, 3, 7) * one, out + lanes);
                measure.addFrames(even, even, half);
                measure.addFrames(odd, odd, half);
            }
        }
    }
    for (; frame < frames; ++frame, in += Channels) {
        const auto left = static_cast<float>(in[0]);
        const auto right = static_cast<float>(in[Channels - 1]);
        *out++ = (left + right) * (0.5F * one);
        measure.addFrame(left, right);
    }
    return measure.result(frames, one);
}

}  // namespace

MonoRead foldStereo(std::span<const float> samples, std::span<float> mono) {
    return fold<2>(samples, mono);
}
MonoRead foldMono(std::span<const float> samples, std::span<float> mono) {
    return fold<1>(samples, mono);
}
MonoRead foldStereo(std::span<const std::int16_t> samples, std::span<float> mono) {
    return fold<2>(samples, mono);
}
MonoRead foldMono(std::span<const std::int16_t> samples, std::span<float> mono) {
    return fold<1>(samples, mono);
}

}  // namespace orbinex
