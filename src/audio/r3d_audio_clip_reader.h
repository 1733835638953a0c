#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "audio/clip_media.h"
#include "audio/mono_read.h"

namespace orbinex {

/// Reads the audio of an R3D camera clip, which may be spread over several segment files.
class R3DAudioClipReader {
  public:
    /// In Hz.
    static constexpr double sampleRate = 48'000;

    /// Opens the clip's segments and reads their indices. Nothing when no file exists at the path; a clip
    /// without a readable index has no frames.
    static std::shared_ptr<R3DAudioClipReader> create(const std::string& path, ClipMedia& media);

    [[nodiscard]] std::int64_t totalSampleFrames() const;

    /// Reads frames from `startSample` on, at most `maxFrames` and what `buffer` has room for, and writes
    /// each frame's mean of both channels to `buffer`, from its beginning.
    MonoRead readMono(std::int64_t startSample, std::size_t maxFrames, std::span<float> buffer);
};

}  // namespace orbinex
