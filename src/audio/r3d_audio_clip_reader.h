#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "audio/clip_media.h"
#include "audio/mono_read.h"
#include "audio/r3d_index.h"

namespace orbinex {

/// Reads the audio of an R3D camera clip, which may be spread over several segment files.
class R3DAudioClipReader {
  public:
    /// In Hz.
    static constexpr double sampleRate = 48'000;

    /// Opens the clip's segments and reads their indices. Nothing when no file exists at the path. Segments
    /// that cannot be opened are left out, and those without a readable index have no frames.
    static std::shared_ptr<R3DAudioClipReader> create(const std::string& path, ClipMedia& media);

    /// Of all segments, as their indices tell it.
    [[nodiscard]] std::int64_t totalSampleFrames() const { return totalSampleFrames_; }

    /// Reads frames from `startSample` on, at most `maxFrames` and what `buffer` has room for, and writes
    /// each frame's mean of both channels to `buffer`, from its beginning. A block that is cut short goes
    /// over into the next one; one of which nothing can be read ends the read.
    MonoRead readMono(std::int64_t startSample, std::size_t maxFrames, std::span<float> buffer);

  private:
    void addSegment(std::unique_ptr<MediaFile> segment);
    /// The block that holds the frame, which exists.
    [[nodiscard]] std::size_t blockAt(std::int64_t sample) const;

    std::vector<std::unique_ptr<MediaFile>> segmentHandles_;
    std::vector<AudioBlock> blocks_;
    std::int64_t totalSampleFrames_ = 0;
    std::array<std::uint8_t, 32'768> rawScratch_{};
};

}  // namespace orbinex
