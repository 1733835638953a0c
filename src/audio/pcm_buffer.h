#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orbinex {

/// How a media file's samples are handed over: 16-bit integers of full scale 32768, or floats of full
/// scale 1.
enum class SampleType : std::uint8_t { int16, float32 };

/// Room for the samples of one read, frame after frame, the channels of a frame side by side.
class PCMBuffer {
  public:
    /// Frames that it holds.
    static constexpr std::size_t frameCapacity = 2048;

    /// `channelCount` is 1 or 2.
    PCMBuffer(SampleType type, int channelCount)
        : shorts_(type == SampleType::int16 ? sampleCount(channelCount) : 0),
          floats_(type == SampleType::float32 ? sampleCount(channelCount) : 0) {}

    /// frameCapacity x channelCount samples; empty when the samples are of the other type.
    std::span<std::int16_t> shorts() { return shorts_; }
    std::span<float> floats() { return floats_; }

  private:
    static std::size_t sampleCount(int channelCount) {
        return frameCapacity * static_cast<std::size_t>(channelCount);
    }

    std::vector<std::int16_t> shorts_;
    std::vector<float> floats_;
};

}  // namespace orbinex
