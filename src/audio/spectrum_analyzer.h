#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace orbinex {

/// The spectrum of a run of samples in 16 bands, with their fall smoothed from call to call.
class SpectrumAnalyzer {
  public:
    static constexpr std::size_t fftLength = 1024;
    static constexpr std::size_t bandCount = 16;
    using Bands = std::array<std::uint8_t, bandCount>;

    SpectrumAnalyzer();
    ~SpectrumAnalyzer();

    /// The bands, on the meter scale, of the first 1024 samples times `gain`. Fewer are followed by silence.
    /// Fewer than 64, or a gain that is not above 0, measure nothing and let the bands decay.
    Bands analyze(std::span<const float> samples, double gain);
    /// One step of silence.
    void decayBands();

  private:
    class Transform;

    [[nodiscard]] Bands smoothedBands() const;

    std::unique_ptr<Transform> transform_;
    std::array<float, fftLength> hannWindow_;
    std::array<double, bandCount> smoothedBandsDB_;
};

}  // namespace orbinex
