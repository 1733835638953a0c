#include <cmath>

#include <gtest/gtest.h>

#include "audio/av_audio_clip_reader.h"
#include "audio/clip_source_opener.h"
#include "sim/simulated_clip_media.h"

namespace orbinex {
namespace {

std::shared_ptr<AVAudioClipReader> readerOf(SimulatedSound sound) {
    return AVAudioClipReader::create(
        std::make_unique<SimulatedAudioFile>(std::make_shared<SimulatedSound>(std::move(sound))));
}

float ramp(std::int64_t frame, int channel) {
    return static_cast<float>(frame + channel) / 4096.0F;
}

TEST(ClipReader, isRefusedForFilesWithoutRateOrFrames) {
    EXPECT_EQ(AVAudioClipReader::create(nullptr), nullptr);
    for (const double rate : {0.0, -1.0, static_cast<double>(NAN), static_cast<double>(INFINITY)})
        EXPECT_EQ(readerOf({.sample = ramp, .sampleRate = rate}), nullptr);
    EXPECT_EQ(readerOf({.sample = ramp, .totalSampleFrames = 0}), nullptr);
    EXPECT_NE(readerOf({.sample = ramp, .totalSampleFrames = 1}), nullptr);
}

TEST(ClipReader, readsWhatIsAskedForWithinItsBounds) {
    const auto reader = readerOf({.sample = ramp, .totalSampleFrames = 5000});
    const struct {
        std::int64_t start;
        std::size_t frames, room, expected;
    } rows[] = {
        {0, 1024, 2048, 1024}, {4999, 1024, 2048, 1}, {4500, 1024, 2048, 500}, {100, 4000, 4096, 2048},
        {100, 1024, 10, 10},   {100, 0, 2048, 0},     {100, 1024, 0, 0},       {-1, 1024, 2048, 0},
        {5000, 1024, 2048, 0}, {INT64_MAX, 9, 9, 0},  {INT64_MIN, 9, 9, 0},
    };
    for (const auto& row : rows) {
        std::vector<float> buffer(row.room, -1);
        const auto read = reader->readMono(row.start, row.frames, buffer);
        EXPECT_EQ(read.framesRead, row.expected) << row.start;
        for (std::size_t i = 0; i < row.room; ++i) {
            const auto frame = static_cast<float>(row.start) + static_cast<float>(i);
            EXPECT_EQ(buffer[i], i < row.expected ? (frame + 0.5F) / 4096.0F : -1) << row.start << "+" << i;
        }
        if (row.expected == 0) {
            EXPECT_EQ(read, MonoRead{});
        }
    }
}

TEST(ClipReader, readsOnlyWhatTheFileStillGives) {
    const auto reader =
        readerOf({.sample = ramp, .totalSampleFrames = 5000, .channelCount = 1, .readableFrames = 700});
    std::vector<float> buffer(2048);
    EXPECT_EQ(reader->readMono(600, 1024, buffer).framesRead, 100U);
    EXPECT_EQ(reader->readMono(600, 1024, buffer).peak, 699.0F / 4096.0F);
    EXPECT_EQ(reader->readMono(700, 1024, buffer), MonoRead{});
}

TEST(SourceOpener, choosesTheReaderByTheExtension) {
    enum Kind : std::size_t { unsupported, file, clip };
    SimulatedClipMedia media;
    const struct {
        const char* path;
        bool isSound;
        Kind kind;
    } rows[] = {
        {"/a.wav", true, file},         {"/a.WAV", true, file},        {"/noextension", true, file},
        {"/a.r3d", false, clip},        {"/a.R3D", false, clip},       {"/a.r3d", true, clip},
        {"/a.wav", false, unsupported}, {"/dir.r3d/a", true, file},    {"/.r3d", true, file},
        {"/a.b.r3D", false, clip},      {"relative.R3d", false, clip},
    };
    for (const auto& row : rows) {
        media.sounds.clear();
        media.files.clear();
        if (row.isSound) {
            media.sounds[row.path] = std::make_shared<SimulatedSound>(SimulatedSound{.sample = ramp});
        } else {
            media.files[row.path] = std::make_shared<Bytes>(Bytes(100));
        }
        EXPECT_EQ(openAudioSource(row.path, media).index(), row.kind) << row.path;
        EXPECT_EQ(openAudioSource(std::string(row.path) + "x", media).index(), unsupported);
    }
}

}  // namespace
}  // namespace orbinex
