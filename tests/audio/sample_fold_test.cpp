#include "audio/sample_fold.h"

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

/// The definition, frame by frame, with the sums in double precision.
template <class Sample>
void expectFold(const std::vector<Sample>& samples, std::size_t channels, double unit) {
    const std::size_t frames = samples.size() / channels;
    std::vector<float> mono(frames + 1, 77.0F);
    const auto result = channels == 2
                            ? foldStereo(std::span<const Sample>(samples), std::span(mono).first(frames))
                            : foldMono(std::span<const Sample>(samples), std::span(mono).first(frames));
    double peak = 0;
    double sum = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const double left = static_cast<double>(samples[i * channels]) * unit;
        const double right = static_cast<double>(samples[i * channels + channels - 1]) * unit;
        EXPECT_EQ(mono[i], static_cast<float>((left + right) / 2)) << i << " of " << frames;
        peak = std::max({peak, std::fabs(left), std::fabs(right)});
        sum += (left * left + right * right) / 2;
    }
    EXPECT_EQ(mono[frames], 77.0F) << "one past the end was written";
    EXPECT_EQ(result.framesRead, frames);
    EXPECT_EQ(result.peak, static_cast<float>(peak)) << frames;
    const double rms = frames == 0 ? 0 : std::sqrt(sum / static_cast<double>(frames));
    EXPECT_NEAR(result.rms, rms, 1e-6 * rms) << frames;
}

TEST(SampleFold, agreesWithItsDefinitionForEveryLength) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> anySample(-32'768, 32'767);
    std::vector<std::size_t> lengths{256, 512, 1023, 1024, 2048};
    for (std::size_t i = 0; i <= 40; ++i) lengths.push_back(i);
    for (const std::size_t frames : lengths) {
        for (const std::size_t channels : {1U, 2U}) {
            std::vector<std::int16_t> shorts(frames * channels);
            for (auto& sample : shorts) sample = static_cast<std::int16_t>(anySample(random));
            std::vector<float> floats(shorts.size());
            for (std::size_t i = 0; i < floats.size(); ++i)
                floats[i] = static_cast<float>(shorts[i]) / 65'536.0F;
            expectFold(shorts, channels, 1.0 / 32'768);
            expectFold(floats, channels, 1);
        }
    }
}

TEST(SampleFold, findsThePeakInEveryPlaceAndEitherChannel) {
    for (std::size_t place = 0; place < 2 * 19; ++place) {
        std::vector<std::int16_t> shorts(2 * 19, 5);
        shorts[place] = -32'768;
        expectFold(shorts, 2, 1.0 / 32'768);
        std::vector<float> floats(2 * 19, 0.25F);
        floats[place] = -3;
        expectFold(floats, 2, 1);
    }
}

TEST(SampleFold, raisesNoPeakForWhatIsNotANumber) {
    std::vector<float> samples(64, 0.5F);
    for (const std::size_t place : {0U, 9U, 63U}) samples[place] = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> mono(64);
    EXPECT_EQ(foldStereo(samples, mono).peak, 0.5F);
    EXPECT_EQ(foldMono(samples, mono).peak, 0.5F);
}

}  // namespace
}  // namespace orbinex
