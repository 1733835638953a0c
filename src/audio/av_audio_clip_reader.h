#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "audio/audio_file.h"
#include "audio/mono_read.h"

namespace orbinex {

/// Reads runs of a media file folded to mono.
class AVAudioClipReader {
  public:
    /// Nothing when the file's rate is not above 0 or it has no frame.
    static std::shared_ptr<AVAudioClipReader> create(std::unique_ptr<AudioFile> audioFile);

    explicit AVAudioClipReader(std::unique_ptr<AudioFile> audioFile);

    /// In Hz.
    [[nodiscard]] double sampleRate() const { return sampleRate_; }
    [[nodiscard]] std::int64_t totalSampleFrames() const { return totalSampleFrames_; }

    /// Reads frames from `startSample` on, at most `maxFrames`, PCMBuffer::frameCapacity and what `buffer`
    /// has room for, and writes each frame's mean of left and right to `buffer`, from its beginning. A mono
    /// file's channel is left and right.
    MonoRead readMono(std::int64_t startSample, std::size_t maxFrames, std::span<float> buffer);

  private:
    std::unique_ptr<AudioFile> audioFile_;
    double sampleRate_;
    std::int64_t totalSampleFrames_;
    int channelCount_;
};

}  // namespace orbinex
