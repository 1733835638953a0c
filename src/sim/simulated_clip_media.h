#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "audio/clip_media.h"
#include "base/bytes.h"

namespace orbinex {

/// Bytes in memory that are read as a file. They may change while the file is open.
class MemoryMediaFile final : public MediaFile {
  public:
    explicit MemoryMediaFile(std::shared_ptr<const Bytes> bytes) : bytes_(std::move(bytes)) {}

    std::optional<std::uint64_t> size() override { return bytes_->size(); }
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        if (offset >= bytes_->size()) return 0;
        const auto there = ByteView(*bytes_).subspan(static_cast<std::size_t>(offset));
        const auto count = std::min(there.size(), bytes.size());
        std::copy_n(there.begin(), count, bytes.begin());
        return count;
    }

  private:
    std::shared_ptr<const Bytes> bytes_;
};

/// An audio file whose samples are worked out when they are read.
struct SimulatedSound {
    /// The sample of a channel (0 or 1) at a frame.
    using Sample = std::function<float(std::int64_t frame, int channel)>;

    Sample sample;
    double sampleRate = 48'000;
    std::int64_t totalSampleFrames = 480'000;
    int channelCount = 2;
    /// Frames from here on cannot be read.
    std::int64_t readableFrames = INT64_MAX;
};

/// Reads a sound; what is changed in it shows in the next read.
class SimulatedAudioFile final : public AudioFile {
  public:
    explicit SimulatedAudioFile(std::shared_ptr<const SimulatedSound> sound) : sound_(std::move(sound)) {}

    double sampleRate() const override { return sound_->sampleRate; }
    std::int64_t totalSampleFrames() const override { return sound_->totalSampleFrames; }
    int channelCount() const override { return sound_->channelCount; }
    SampleType sampleType() const override { return SampleType::float32; }
    bool prefersReadingOn() const override { return false; }
    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override {
        const auto end = std::min(sound_->totalSampleFrames, sound_->readableFrames);
        if (start < 0 || start >= end) return 0;
        count = std::min({count, PCMBuffer::frameCapacity, static_cast<std::size_t>(end - start)});
        auto out = buffer.floats().begin();
        for (std::size_t i = 0; i < count; ++i)
            for (int channel = 0; channel < sound_->channelCount; ++channel)
                *out++ = sound_->sample(start + static_cast<std::int64_t>(i), channel);
        return count;
    }

  private:
    std::shared_ptr<const SimulatedSound> sound_;
};

/// Files in memory: sounds, and plain bytes. What is taken out of the maps is deleted for those who look for
/// it, not for those who have it open.
class SimulatedClipMedia final : public ClipMedia {
  public:
    std::map<std::string, std::shared_ptr<const SimulatedSound>> sounds;
    std::map<std::string, std::shared_ptr<const Bytes>> files;
    /// How often a file or a sound was asked for.
    int openings = 0;

    bool exists(const std::string& path) override { return sounds.contains(path) || files.contains(path); }
    std::unique_ptr<MediaFile> openFile(const std::string& path) override {
        ++openings;
        const auto found = files.find(path);
        return found == files.end() ? nullptr : std::make_unique<MemoryMediaFile>(found->second);
    }
    std::unique_ptr<AudioFile> openAudioFile(const std::string& path) override {
        ++openings;
        const auto found = sounds.find(path);
        return found == sounds.end() ? nullptr : std::make_unique<SimulatedAudioFile>(found->second);
    }
};

}  // namespace orbinex
