#pragma once

#include <memory>

#include "audio/audio_file.h"
#include "audio/media_file.h"

namespace orbinex {

/// What libsndfile reads exactly: WAV and its kin, AIFF, CAF, FLAC and rarer kinds. 16-bit PCM comes as
/// integers, everything else as floats. Reading uncompressed media allocates nothing.
class SndfileAudioFile final : public AudioFile {
  public:
    /// Nothing when libsndfile does not read the file, or it has no frame; `media` is then left where it is,
    /// and else taken.
    static std::unique_ptr<SndfileAudioFile> open(std::unique_ptr<MediaFile>& media);
    ~SndfileAudioFile() override;

    [[nodiscard]] double sampleRate() const override { return sampleRate_; }
    [[nodiscard]] std::int64_t totalSampleFrames() const override { return totalSampleFrames_; }
    [[nodiscard]] int channelCount() const override;
    [[nodiscard]] SampleType sampleType() const override;
    [[nodiscard]] bool prefersReadingOn() const override;
    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override;

  private:
    class Opened;

    SndfileAudioFile(std::unique_ptr<MediaFile> media, std::unique_ptr<Opened> opened);

    /// Makes it readable again after bytes could not be had.
    bool recover();

    std::unique_ptr<MediaFile> media_;
    std::unique_ptr<Opened> opened_;
    double sampleRate_;
    std::int64_t totalSampleFrames_;
};

}  // namespace orbinex
