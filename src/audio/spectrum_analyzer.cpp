#include "audio/spectrum_analyzer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <kissfft/kiss_fftr.h>

#include "audio/dbfs.h"
#include "protocol/meter_scale.h"

namespace orbinex {

namespace {

constexpr std::size_t fewestSamples = 64;
/// Peak value of half of the window: a Hann window normalised to the power of a rectangular one, sqrt(2/3).
constexpr double windowScale = 0.8165;
/// The level is that of a transform of twice the plain one's amplitude, so four times its power, of which
/// 1/1024 squared counts, and 2.5 times the amplitude of that.
constexpr float powerScale = 4.0F / (1024.0F * 1024.0F);
constexpr double amplitudeScale = 2.5;
/// dB a call.
constexpr double release = 6.5;
constexpr double silentDecay = 18;

/// The first bin of each band, and the first after the last. A bin is 1/1024 of the sample rate wide.
constexpr std::array<std::size_t, SpectrumAnalyzer::bandCount> bandStart{1,  2,  3,  4,  6,  8,   11,  15,
                                                                         21, 30, 43, 62, 89, 128, 186, 275};
constexpr std::size_t bandsEnd = 480;

}  // namespace

/// The plain discrete Fourier transform of real samples.
class SpectrumAnalyzer::Transform {
  public:
    Transform() : plan_(kiss_fftr_alloc(static_cast<int>(fftLength), 0, nullptr, nullptr)) {}
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;
    ~Transform() { kiss_fftr_free(plan_); }

    [[nodiscard]] bool hasPlan() const { return plan_ != nullptr; }
    std::array<float, fftLength>& input() { return windowed_; }
    void run() { kiss_fftr(plan_, windowed_.data(), bins_.data()); }
    /// Squared magnitude of bin `k`.
    [[nodiscard]] float power(std::size_t k) const {
        return bins_[k].r * bins_[k].r + bins_[k].i * bins_[k].i;
    }

  private:
    kiss_fftr_cfg plan_;
    std::array<float, fftLength> windowed_{};
    std::array<kiss_fft_cpx, fftLength / 2 + 1> bins_{};
};

SpectrumAnalyzer::SpectrumAnalyzer() : transform_(std::make_unique<Transform>()) {
    for (std::size_t n = 0; n < fftLength; ++n) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(fftLength);
        hannWindow_[n] = static_cast<float>(windowScale * (1 - std::cos(turn)));
    }
    smoothedBandsDB_.fill(silenceDBFS);
}

SpectrumAnalyzer::~SpectrumAnalyzer() = default;

SpectrumAnalyzer::Bands SpectrumAnalyzer::analyze(std::span<const float> samples, double gain) {
    if (!transform_->hasPlan() || samples.size() < fewestSamples || !(gain > 0)) {
        decayBands();
        return smoothedBands();
    }
    const std::size_t count = std::min(samples.size(), fftLength);
    const auto factor = static_cast<float>(gain);
    auto& windowed = transform_->input();
    for (std::size_t i = 0; i < count; ++i) windowed[i] = factor * samples[i] * hannWindow_[i];
    std::fill(windowed.begin() + static_cast<std::ptrdiff_t>(count), windowed.end(), 0.0F);
    transform_->run();
    for (std::size_t band = 0; band < bandCount; ++band) {
        const std::size_t end = band + 1 < bandCount ? bandStart[band + 1] : bandsEnd;
        float largest = 0;
        for (std::size_t k = bandStart[band]; k < end; ++k)
            if (transform_->power(k) > largest) largest = transform_->power(k);
        const double level = linearToDBFS(std::sqrt(largest * powerScale) * amplitudeScale);
        double& smoothed = smoothedBandsDB_[band];
        smoothed = std::max(level, smoothed - release);
    }
    return smoothedBands();
}

void SpectrumAnalyzer::decayBands() {
    for (double& band : smoothedBandsDB_) band = std::max(band - silentDecay, silenceDBFS);
}

SpectrumAnalyzer::Bands SpectrumAnalyzer::smoothedBands() const {
    Bands bands{};
    std::ranges::transform(smoothedBandsDB_, bands.begin(), meterByte);
    return bands;
}

}  // namespace orbinex
