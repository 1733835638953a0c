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
        // From start to end before anything else.
        if (medium.exactness != Exactness::coarse) {
            EXPECT_EQ(differenceOfStraightRead(*file, medium.straight), 0);
        }
        expectNothingIsReadOutside(*file);
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

TEST(FFmpegAudioFile, isTheFirstOfOggFilesThatFollowOneAnother) {
    const std::pair<const char*, const char*> chains[] = {{"vorbis-blows.ogg", "vorbis.ogg"},
                                                          {"vorbis.ogg", "vorbis-blows.ogg"},
                                                          {"opus.ogg", "opus-blows.ogg"},
                                                          {"opus-blows.ogg", "opus.ogg"}};
    for (const auto& [name, next] : chains) {
        SCOPED_TRACE(name);
        const auto& first = madeMedium(name);
        auto bytes = first.bytes;
        const auto& second = madeMedium(next).bytes;
        bytes.insert(bytes.end(), second.begin(), second.end());
        const auto file = open(std::move(bytes));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->totalSampleFrames(), first.straight.length());
        EXPECT_EQ(differenceOfReads(*file, first.straight, readsOf(first.exactness)), 0);
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
        const auto disc = std::make_shared<Disc>(Disc{medium.bytes});
        std::unique_ptr<MediaFile> media = std::make_unique<DiscMediaFile>(disc);
        const auto file = FFmpegAudioFile::open(media);
        ASSERT_TRUE(file);
        expectTheSameAfterTheDiscWasGone(*file, *disc, medium.straight);
    }
}

}  // namespace

}  // namespace orbinex
