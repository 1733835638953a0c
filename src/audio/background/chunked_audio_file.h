#pragma once

#include <memory>

#include "audio/audio_file.h"
#include "audio/background/media_workers.h"

namespace orbinex {

/// Reads a compressed file in the background, ahead of where it is heard, and keeps the last seconds decoded.
/// The samples are those of the file within; what is not decoded in time is missing from a read, and there
/// the next time.
class ChunkedAudioFile final : public AudioFile {
  public:
    /// From now on only background threads use `file`, its end included.
    ChunkedAudioFile(std::unique_ptr<AudioFile> file, std::shared_ptr<MediaWorkers> workers);
    /// Never waits for the file.
    ~ChunkedAudioFile() override;

    [[nodiscard]] double sampleRate() const override { return sampleRate_; }
    [[nodiscard]] std::int64_t totalSampleFrames() const override { return totalSampleFrames_; }
    [[nodiscard]] int channelCount() const override { return channelCount_; }
    [[nodiscard]] SampleType sampleType() const override { return sampleType_; }
    [[nodiscard]] bool prefersReadingOn() const override { return false; }
    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override;

  private:
    class Decoding;

    double sampleRate_;
    std::int64_t totalSampleFrames_;
    int channelCount_;
    SampleType sampleType_;
    std::shared_ptr<Decoding> decoding_;
    std::shared_ptr<MediaWorkers> workers_;
};

}  // namespace orbinex
