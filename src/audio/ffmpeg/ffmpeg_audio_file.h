#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "audio/audio_file.h"
#include "audio/ffmpeg/frame_placement.h"
#include "audio/media_file.h"

namespace orbinex {

class AudioStreamDecoder;

/// The first audio stream of what FFmpeg's libraries read: MP4, MOV, Matroska, MXF, AVI, MPEG transport
/// streams, Ogg, plain AAC and more. Samples are placed by their timestamps, so that they are the same
/// wherever reading began; where the stream has none there is silence. Position 0 is the first sample, in MOV
/// and MP4 with pictures where the movie begins.
class FFmpegAudioFile final : public AudioFile {
  public:
    /// Nothing when the file has no audio stream that can be decoded; `media` is then left where it is, and
    /// else taken.
    static std::unique_ptr<FFmpegAudioFile> open(std::unique_ptr<MediaFile>& media);
    ~FFmpegAudioFile() override;

    [[nodiscard]] double sampleRate() const override { return sampleRate_; }
    /// Up to the end of what the last packet decodes to. Where the file cannot be read to there, or not at
    /// the cost that one opening may have, what the container tells.
    [[nodiscard]] std::int64_t totalSampleFrames() const override { return totalSampleFrames_; }
    [[nodiscard]] int channelCount() const override { return channelCount_; }
    [[nodiscard]] SampleType sampleType() const override { return sampleType_; }
    [[nodiscard]] bool prefersReadingOn() const override { return true; }
    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override;

  private:
    /// The decoder's frame in its place.
    struct Placed {
        /// From here to `start` there was no frame.
        std::int64_t silenceFrom = 0;
        std::int64_t start = 0;
        std::int64_t end = 0;
    };

    FFmpegAudioFile();
    bool begin(MediaFile& media);
    bool takeFirstFrame();
    [[nodiscard]] FramePlacement placementBy(std::span<const std::int64_t> steps) const;
    void learnSteps();
    void measureLength();
    [[nodiscard]] std::optional<std::int64_t> lastPacketPosition(std::int64_t toldEnd);
    bool openAnew();

    bool reach(std::int64_t position);
    bool decodeOnTo(std::int64_t position);
    bool seekTo(std::int64_t position);
    bool seekBefore(std::int64_t position);
    bool startOver();
    bool placeNext();
    [[nodiscard]] bool isUsable() const;

    std::unique_ptr<MediaFile> media_;
    std::unique_ptr<AudioStreamDecoder> decoder_;
    std::optional<FramePlacement> placement_;
    int sampleRate_ = 0;
    int channelCount_ = 0;
    SampleType sampleType_ = SampleType::float32;
    std::int64_t preRoll_ = 0;
    bool cutsFirstFrameAfterSeek_ = false;
    /// Where sound begins: behind 0 when the file has pictures before it.
    std::int64_t audibleFrom_ = 0;
    /// Of the first frame that is heard, and how many of its samples are not.
    std::int64_t firstTimestamp_ = 0;
    std::int64_t skipped_ = 0;
    /// Where the first frame that is decoded begins: at `audibleFrom_` or below.
    std::int64_t firstPosition_ = 0;
    std::int64_t totalSampleFrames_ = 0;
    /// Where the last packet begins.
    std::int64_t lastPosition_ = 0;

    /// Nothing when it is not known where the decoder stands.
    std::optional<Placed> placed_;
    /// From here on this run of frames has the samples of a straight decode.
    std::int64_t exactFrom_ = 0;
    /// Frames that may yet be decoded for this read, and bytes that may be read for it.
    int framesAllowed_;
    std::uint64_t bytesAllowed_;
};

}  // namespace orbinex
