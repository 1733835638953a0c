#include "audio/ffmpeg/ffmpeg_audio_file.h"

#include <gtest/gtest.h>

#include "audio/ffmpeg/endless_media_file.h"
#include "audio/ffmpeg/made_media.h"

namespace orbinex {

namespace {

using namespace test;

std::unique_ptr<FFmpegAudioFile> open(Bytes bytes) {
    auto media = inMemory(std::move(bytes));
    return FFmpegAudioFile::open(media);
}

int readsOf(Exactness exactness) {
    return exactness == Exactness::exact ? 100 * rounds : 4 * rounds;
}

TEST(FFmpegAudioFile, givesTheSamplesOfAStraightDecodeWhereverItReads) {
    for (const auto& medium : madeMedia()) {
        SCOPED_TRACE(medium.name);
        const auto file = open(medium.bytes);
        ASSERT_TRUE(file);
        EXPECT_EQ(file->sampleRate(), medium.sampleRate);
        EXPECT_EQ(file->channelCount(), std::min(medium.straight.channelCount, 2));
        EXPECT_EQ(file->totalSampleFrames(), medium.straight.length());
        const auto is = [&medium](std::string_view kind) { return medium.name.starts_with(kind); };
        EXPECT_EQ(file->sampleType() == SampleType::int16,
                  is("s16") || is("alac.") || is("alaw") || is("mulaw") || is("ima4"));
        if (medium.exactness == Exactness::madeUpNoise) continue;
        const float difference = medium.exactness == Exactness::coarse ? 128.0F / 32768 : 0;
        EXPECT_LE(differenceOfReads(*file, medium.straight, readsOf(medium.exactness)), difference);
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
        SCOPED_TRACE(name);
        const auto file = open(madeMedium(name).bytes);
        ASSERT_TRUE(file);
        expectNothingIsReadOutside(*file);
    }
}

/// How many reads it takes until there are 1024 frames at `start`; 9 when it takes more than that.
int readsUntilThere(FFmpegAudioFile& file, std::int64_t start) {
    PCMBuffer buffer(file.sampleType(), file.channelCount());
    int reads = 1;
    while (reads < 9 && file.read(start, 1024, buffer) < 1024) ++reads;
    return reads;
}

TEST(FFmpegAudioFile, opensHoursThatHaveNoIndexAndPlaysTheirEnd) {
    // At 320 kbit/s an hour has 144 MB. Reads look at 128 MiB of it at a time.
    const auto second = madeBy(
        "-f lavfi -i sine=r=48000:d=0.96 -c:a libmp3lame -b:a 320k -reservoir 0 -write_xing 0 "
        "-id3v2_version 0",
        "second.mp3");
    for (const int hours : {1, 3}) {
        const auto disc = std::make_shared<EndlessDisc>();
        disc->repeated = second;
        disc->size = second.size() * static_cast<std::uint64_t>(hours * 3600);
        std::unique_ptr<MediaFile> media = std::make_unique<EndlessMediaFile>(disc);
        const auto file = FFmpegAudioFile::open(media);
        ASSERT_TRUE(file);
        const auto frames = static_cast<std::int64_t>(disc->size) / 960 * 1152;
        EXPECT_NEAR(static_cast<double>(file->totalSampleFrames()), static_cast<double>(frames), 1152);
        EXPECT_LT(disc->bytesRead, 200U << 20U);
        EXPECT_LE(readsUntilThere(*file, frames - 48'000), hours == 1 ? 1 : 4);
        EXPECT_EQ(readsUntilThere(*file, 48'000), 1);
        EXPECT_EQ(readsUntilThere(*file, frames - 96'000), 1) << "it is known by now where that is";
        EXPECT_LT(disc->bytesRead, disc->size + (100U << 20U));
    }
}

TEST(FFmpegAudioFile, takesTheContainersWordForALengthThatIsTooFarToDecode) {
    // Frames so short that one read does not decode them all.
    const auto file = open(madeBy("-f lavfi -i sine=r=8000:d=800 -c:a flac -frame_size 256", "long.ogg"));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->totalSampleFrames(), 6'400'000);
    EXPECT_EQ(readsUntilThere(*file, 3'000'000), 1);
}

TEST(FFmpegAudioFile, readsTheSameAgainAfterTheDiscWasGoneOrTheFileCutShort) {
    for (const auto& medium : madeMedia()) {
        if (medium.exactness != Exactness::exact) continue;
        SCOPED_TRACE(medium.name);
        const auto disc = std::make_shared<Disc>();
        disc->bytes = medium.bytes;
        std::unique_ptr<MediaFile> media = std::make_unique<DiscMediaFile>(disc);
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
            disc->bytes.resize(random() % medium.bytes.size());
            readAtRandom(*file, static_cast<unsigned>(round), 3);
            disc->bytes = medium.bytes;
            EXPECT_EQ(differenceOfRead(*file, medium.straight, start, 1024), 0) << "it was cut short";
        }
    }
}

}  // namespace

}  // namespace orbinex
