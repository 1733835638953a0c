#include "audio/ffmpeg/ffmpeg_audio_file.h"

#include <gtest/gtest.h>

#include "audio/ffmpeg/made_media.h"

namespace orbinex {

namespace {

using namespace test;

std::unique_ptr<FFmpegAudioFile> open(FileBytes bytes) {
    auto media = inMemory(std::move(bytes));
    return FFmpegAudioFile::open(media);
}

int readsOf(Exactness exactness) {
    return exactness == Exactness::exact ? 60 * rounds : 2 * rounds;
}

TEST(FFmpegAudioFile, givesTheSamplesOfAStraightDecodeWhereverItReads) {
    for (const auto& medium : madeMedia()) {
        SCOPED_TRACE(medium.name);
        const auto file = open(medium.bytes);
        ASSERT_TRUE(file);
        EXPECT_EQ(file->sampleRate(), medium.sampleRate);
        EXPECT_EQ(file->channelCount(), std::min(medium.straight.channelCount, 2));
        EXPECT_EQ(file->totalSampleFrames(), medium.straight.length());
        EXPECT_EQ(file->sampleType() == SampleType::int16,
                  medium.name.starts_with("s16") || medium.name == "alac.m4a");
        if (medium.exactness == Exactness::madeUpNoise) continue;
        EXPECT_EQ(differenceOfReads(*file, medium.straight, readsOf(medium.exactness)), 0);
    }
}

TEST(FFmpegAudioFile, givesTheSamplesOfAStraightDecodeFromStartToEndOfEveryMedium) {
    for (const auto& medium : madeMedia()) {
        SCOPED_TRACE(medium.name);
        const auto file = open(medium.bytes);
        ASSERT_TRUE(file);
        float largest = 0;
        for (std::int64_t start = 0; start < medium.straight.length(); start += 1500)
            largest = std::max(largest, differenceOfRead(*file, medium.straight, start, 1500));
        EXPECT_EQ(largest, 0);
    }
}

double levelOf(std::span<const float> samples) {
    double sum = 1e-12;
    for (const float sample : samples) sum += static_cast<double>(sample) * static_cast<double>(sample);
    return 10 * std::log10(sum / static_cast<double>(samples.size()));
}

TEST(FFmpegAudioFile, keepsTheLevelWhereTheDecoderMakesUpNoise) {
    for (const auto* name : {"aac-noise.m4a", "ac3.mkv"}) {
        SCOPED_TRACE(name);
        const auto& medium = madeMedium(name);
        const auto file = open(medium.bytes);
        ASSERT_TRUE(file);
        PCMBuffer buffer(file->sampleType(), 2);
        std::mt19937 random(9);
        double worst = 0;
        for (int i = 0; i < 20 * rounds; ++i) {
            const auto start = static_cast<std::int64_t>(random()) % (medium.straight.length() - 1024);
            ASSERT_EQ(file->read(start, 1024, buffer), 1024U);
            const std::span<const float> read = buffer.floats().first(2048);
            const auto truth =
                std::span(medium.straight.samples).subspan(static_cast<std::size_t>(start) * 2, 2048);
            worst = std::max(worst, std::abs(levelOf(read) - levelOf(truth)));
        }
        RecordProperty(std::string(name) + " decibels", std::to_string(worst));
        EXPECT_LT(worst, 0.5) << "decibels";
    }
}

TEST(FFmpegAudioFile, readsNothingOutsideTheFileAndNoMoreThanTheBufferHolds) {
    for (const auto* name : {"aac.m4a", "s16-video.mov", "flac.mkv"}) {
        const auto& medium = madeMedium(name);
        const auto file = open(medium.bytes);
        ASSERT_TRUE(file);
        const auto length = file->totalSampleFrames();
        PCMBuffer buffer(file->sampleType(), file->channelCount());
        const struct {
            std::int64_t start;
            std::size_t count;
            std::size_t expected;
        } rows[] = {{-1, 10, 0},          {length, 10, 0},
                    {length + 1, 10, 0},  {0, 0, 0},
                    {length - 1, 10, 1},  {length - 1024, 4096, 1024},
                    {0, 1U << 30U, 2048}, {std::int64_t{1} << 62, 10, 0}};
        for (const auto& row : rows)
            EXPECT_EQ(file->read(row.start, row.count, buffer), row.expected)
                << name << " " << row.start << " " << row.count;
    }
}

TEST(FFmpegAudioFile, readsTheSameAgainAfterTheDiscWasGone) {
    for (const auto& medium : madeMedia()) {
        if (medium.exactness != Exactness::exact) continue;
        SCOPED_TRACE(medium.name);
        const auto disc = std::make_shared<Disc>();
        disc->bytes = medium.bytes;
        std::unique_ptr<MediaFile> media = std::make_unique<MemoryMediaFile>(disc);
        const auto file = FFmpegAudioFile::open(media);
        ASSERT_TRUE(file);
        PCMBuffer buffer(file->sampleType(), file->channelCount());
        std::mt19937 random(3);
        for (int round = 0; round < rounds; ++round) {
            disc->readsLeft = static_cast<int>(random() % 8);
            for (int i = 0; i < 12; ++i) {
                const auto start = static_cast<std::int64_t>(random()) % medium.straight.length();
                const auto read = static_cast<std::int64_t>(file->read(start, 1024, buffer));
                EXPECT_EQ(differenceOf(*file, buffer, medium.straight, start, read), 0) << start;
            }
            disc->readsLeft = -1;
            disc->isThere = true;
            const auto start = static_cast<std::int64_t>(random()) % medium.straight.length();
            EXPECT_EQ(differenceOfRead(*file, medium.straight, start, 1024), 0) << start;
        }
    }
}

}  // namespace

}  // namespace orbinex
