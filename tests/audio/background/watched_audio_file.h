#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "audio/audio_file.h"

namespace orbinex::test {

/// A file whose every sample tells where it is from, and what is done to it.
struct WatchedAudio {
    SampleType type = SampleType::float32;
    double sampleRate = 48'000;
    std::int64_t frames = 480'000;
    int channels = 2;
    /// Frames in [first, second) cannot be read, and a read ends before them.
    std::pair<std::int64_t, std::int64_t> damage{0, 0};
    /// Asked at each reading and at the end.
    std::function<void()> onUse = [] {};

    int reads = 0;
    std::int64_t framesRead = 0;
    bool isClosed = false;

    [[nodiscard]] std::int16_t sample(std::int64_t frame, int channel) const {
        const auto number = static_cast<std::uint64_t>(frame);
        return static_cast<std::int16_t>(number * 7 + (number >> 13) * 31 +
                                         static_cast<std::uint64_t>(channel) * 16'001);
    }
};

class WatchedAudioFile final : public AudioFile {
  public:
    explicit WatchedAudioFile(std::shared_ptr<WatchedAudio> audio) : audio_(std::move(audio)) {}
    ~WatchedAudioFile() override {
        audio_->onUse();
        audio_->isClosed = true;
    }

    double sampleRate() const override { return audio_->sampleRate; }
    std::int64_t totalSampleFrames() const override { return audio_->frames; }
    int channelCount() const override { return audio_->channels; }
    SampleType sampleType() const override { return audio_->type; }
    bool prefersReadingOn() const override { return true; }
    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override {
        audio_->onUse();
        ++audio_->reads;
        auto end = std::min(start + static_cast<std::int64_t>(std::min(count, PCMBuffer::frameCapacity)),
                            audio_->frames);
        const auto [damageBegin, damageEnd] = audio_->damage;
        if (start < damageEnd) end = std::min(end, damageBegin);
        if (start < 0 || start >= end) return 0;
        std::size_t i = 0;
        for (auto frame = start; frame < end; ++frame)
            for (int channel = 0; channel < audio_->channels; ++channel, ++i) {
                const auto sample = audio_->sample(frame, channel);
                if (audio_->type == SampleType::int16) {
                    buffer.shorts()[i] = sample;
                } else {
                    buffer.floats()[i] = static_cast<float>(sample) / 32768.0F;
                }
            }
        audio_->framesRead += end - start;
        return static_cast<std::size_t>(end - start);
    }

  private:
    std::shared_ptr<WatchedAudio> audio_;
};

}  // namespace orbinex::test
