#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/pcm_buffer.h"

namespace orbinex {

/// The first audio stream of an open media file, at the file's own rate. Sample-exact: a frame has the same
/// samples wherever reading began and whatever was read before.
class AudioFile {
  public:
    AudioFile() = default;
    AudioFile(const AudioFile&) = delete;
    AudioFile& operator=(const AudioFile&) = delete;
    virtual ~AudioFile() = default;

    /// In Hz, above 0 and finite.
    [[nodiscard]] virtual double sampleRate() const = 0;
    /// Length in frames, at least 1.
    [[nodiscard]] virtual std::int64_t totalSampleFrames() const = 0;
    /// 1 or 2: of a file with more channels the first two are read.
    [[nodiscard]] virtual int channelCount() const = 0;
    [[nodiscard]] virtual SampleType sampleType() const = 0;
    /// True when reading elsewhere costs more than reading on, as with compressed media.
    [[nodiscard]] virtual bool prefersReadingOn() const = 0;

    /// Reads frames from `start` on, at most `count`, what the buffer holds and what the file still has, into
    /// the buffer's beginning. The buffer was made for sampleType() and no fewer channels. Returns how many:
    /// fewer where the file is damaged, cut short or not at hand in time, 0 when there are none or `start` is
    /// outside the file.
    virtual std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) = 0;
};

}  // namespace orbinex
