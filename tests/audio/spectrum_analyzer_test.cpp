#include "audio/spectrum_analyzer.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <string>

#include <gmock/gmock.h>

#include "protocol/meter_scale.h"

namespace orbinex {
namespace {

using testing::Each;
using testing::ElementsAreArray;
using Bands = SpectrumAnalyzer::Bands;

/// First and last bin of each band.
constexpr std::pair<int, int> bandBins[] = {{1, 1},    {2, 2},     {3, 3},     {4, 5},    {6, 7},   {8, 10},
                                            {11, 14},  {15, 20},   {21, 29},   {30, 42},  {43, 61}, {62, 88},
                                            {89, 127}, {128, 185}, {186, 274}, {275, 479}};

std::vector<float> tone(double bin, double amplitude, std::size_t count = 1024) {
    std::vector<float> samples(count);
    for (std::size_t n = 0; n < count; ++n)
        samples[n] = static_cast<float>(
            amplitude * std::cos(2 * std::numbers::pi * bin * static_cast<double>(n) / 1024 + 0.3));
    return samples;
}

/// The bands worked out from the definition of the discrete Fourier transform, in double precision.
Bands plainBands(const std::vector<float>& samples, double gain) {
    std::vector<double> dB(16, -288);
    for (std::size_t band = 0; band < 16; ++band) {
        for (int k = bandBins[band].first; k <= bandBins[band].second; ++k) {
            std::complex<double> sum;
            for (std::size_t n = 0; n < std::min<std::size_t>(samples.size(), 1024); ++n) {
                const double angle = 2 * std::numbers::pi * static_cast<double>(n) / 1024;
                sum += gain * static_cast<double>(samples[n]) * 0.8165 * (1 - std::cos(angle)) *
                       std::polar(1.0, -angle * k);
            }
            // A transform of twice the plain one's values, scaled by 2^-10, times 2.5.
            dB[band] = std::max(dB[band], 20 * std::log10(2.5 * 2 * std::abs(sum) / 1024));
        }
    }
    Bands bands{};
    std::ranges::transform(dB, bands.begin(), [](double level) { return meterByte(std::min(level, 0.0)); });
    return bands;
}

/// Noise whose power falls with frequency, by Voss: sums of dice that are thrown ever more rarely.
std::vector<float> pinkNoise(std::size_t count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> die(-0.05F, 0.05F);
    std::array<float, 12> dice{};
    std::vector<float> samples(count);
    for (std::size_t n = 0; n < count; ++n) {
        for (std::size_t i = 0; i < dice.size(); ++i)
            if (n % (std::size_t{1} << i) == 0) dice[i] = die(random);
        samples[n] = std::accumulate(dice.begin(), dice.end(), 0.0F);
    }
    return samples;
}

TEST(SpectrumAnalyzer, showsASineInTheBandOfItsFrequencyAtItsLevel) {
    for (std::size_t band = 0; band < 16; ++band) {
        const auto [first, last] = bandBins[band];
        for (const int bin : {first, (first + last) / 2, last}) {
            SpectrumAnalyzer analyzer;
            const auto bands = analyzer.analyze(tone(bin, 0.05), 2);
            // Of a sine on a bin the window leaves amplitude x 1024 / 2 x 0.8165.
            const double level = 20 * std::log10(0.1 * 0.8165 * 2.5);
            EXPECT_EQ(bands[band], meterByte(level)) << "bin " << bin;
            EXPECT_EQ(std::ranges::max(bands), bands[band]) << "bin " << bin;
        }
    }
    // Outside all bands: the ends of the spectrum are not shown but for the window's slope.
    SpectrumAnalyzer analyzer;
    EXPECT_THAT(analyzer.analyze(tone(500, 1), 1), Each(testing::Lt(meterByte(-90))));
}

TEST(SpectrumAnalyzer, agreesWithThePlainTransform) {
    const auto noise = pinkNoise(1100);
    for (const std::size_t count : {std::size_t{64}, std::size_t{512}, std::size_t{1000}, noise.size()}) {
        for (const double gain : {0.01, 0.5}) {
            SpectrumAnalyzer analyzer;
            const std::vector<float> samples(noise.begin(),
                                             noise.begin() + static_cast<std::ptrdiff_t>(count));
            const auto expected = plainBands(samples, gain);
            const auto bands = analyzer.analyze(samples, gain);
            for (std::size_t band = 0; band < 16; ++band)
                EXPECT_NEAR(bands[band], expected[band], 1) << count << " samples, band " << band;
        }
    }
}

TEST(SpectrumAnalyzer, risesAtOnceAndFallsStepByStep) {
    SpectrumAnalyzer analyzer;
    const auto levelOf = [&](std::uint8_t byte) { return dbFromMeterPosition(byte / 255.0); };
    const double loud = levelOf(analyzer.analyze(tone(24, 0.1), 1)[8]);
    const std::vector<float> silence(1024);
    EXPECT_NEAR(levelOf(analyzer.analyze(silence, 1)[8]), loud - 6.5, 0.3);
    // Nothing to measure: 18 dB, and the bands as they then stand.
    EXPECT_NEAR(levelOf(analyzer.analyze(std::span(silence).first(63), 1)[8]), loud - 6.5 - 18, 0.3);
    EXPECT_NEAR(levelOf(analyzer.analyze(tone(24, 0.1), 0)[8]), loud - 6.5 - 36, 0.3);
    analyzer.decayBands();
    EXPECT_NEAR(levelOf(analyzer.analyze(silence, -1)[8]), loud - 6.5 - 72, 0.5);
    EXPECT_NEAR(levelOf(analyzer.analyze(tone(24, 0.1), 1)[8]), loud, 0.01);
    for (int i = 0; i < 16; ++i) analyzer.decayBands();
    EXPECT_THAT(analyzer.analyze(silence, 1), Each(0));
}

}  // namespace
}  // namespace orbinex
