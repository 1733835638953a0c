#include "audio/codec/open_codec.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "audio/ffmpeg/ffmpeg_audio_file.h"
#include "audio/ffmpeg/made_media.h"
#include "audio/sndfile/sndfile_audio_file.h"

namespace orbinex {

namespace {

using namespace test;

TEST(OpenCodec, letsNoContainerPassForSomethingElse) {
    for (const auto& medium : madeMedia()) {
        SCOPED_TRACE(medium.name);
        auto media = inMemory(medium.bytes);
        EXPECT_FALSE(SndfileAudioFile::open(media));
        EXPECT_TRUE(media);
        const auto file = openCodec(std::move(media));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->totalSampleFrames(), medium.straight.length());
    }
}

TEST(OpenCodec, isNotMisledByFrameHeadersInsideOtherFiles) {
    const auto& mpeg = madeMedium("variable.mp3").bytes;
    // An MP4 file that begins with a box full of MPEG audio.
    Bytes disguised(mpeg.size() + 8);
    std::ranges::copy(std::string_view("free"), disguised.begin() + 4);
    std::ranges::copy(mpeg, disguised.begin() + 8);
    for (std::size_t i = 0; i < 4; ++i)
        disguised[i] = static_cast<std::uint8_t>(disguised.size() >> (24 - 8 * i));
    const auto& fragments = madeMedium("aac-fragments.mp4");
    Bytes text(20'000, ' ');
    for (std::size_t i = 0; i + 4 < text.size(); i += 417) {
        text[i] = 0xFF;
        text[i + 1] = 0xFB;
        text[i + 2] = 0x90;
    }
    auto media = inMemory(disguised);
    EXPECT_FALSE(SndfileAudioFile::open(media));
    disguised = fragments.bytes;
    std::copy_n(mpeg.begin(), 2000, disguised.end() - 2000);
    media = inMemory(disguised);
    EXPECT_FALSE(SndfileAudioFile::open(media));
    media = inMemory(text);
    EXPECT_FALSE(SndfileAudioFile::open(media));
}

TEST(OpenCodec, isSilentWhereAFileIsCutShortWhileItPlaysAndSoundsAgain) {
    const std::pair<const char*, const char*> kinds[] = {
        {"cut.wav", "pcm_s16le"}, {"cut.flac", "flac"}, {"cut.m4a", "aac -aac_pns 0"}};
    for (const auto& [name, codec] : kinds) {
        SCOPED_TRACE(name);
        const auto disc = std::make_shared<Disc>();
        disc->bytes = madeBy(std::string("-f lavfi -i sine=r=48000:d=4 -c:a ") + codec, name);
        const auto file = openCodec(std::make_unique<DiscMediaFile>(disc));
        ASSERT_TRUE(file);
        PCMBuffer buffer(file->sampleType(), file->channelCount());
        const auto samplesAt = [&](std::int64_t start) {
            std::vector<float> samples;
            const auto frames = file->read(start, 1024, buffer);
            for (std::size_t i = 0; i < frames; ++i)
                samples.push_back(file->sampleType() == SampleType::int16
                                      ? static_cast<float>(buffer.shorts()[i])
                                      : buffer.floats()[i]);
            return samples;
        };
        const auto before = samplesAt(150'000);
        EXPECT_EQ(before.size(), 1024U);
        const auto whole = disc->bytes;
        disc->bytes.resize(whole.size() / 3);
        for (std::int64_t start = 120'000; start < 150'000; start += 3'168)
            EXPECT_EQ(samplesAt(start).size(), 0U) << start;
        EXPECT_EQ(samplesAt(10'000).size(), 1024U) << "before the cut";
        disc->bytes = whole;
        EXPECT_EQ(samplesAt(150'000), before);
    }
}

TEST(OpenCodec, givesNothingForWhatHasNoAudio) {
    EXPECT_FALSE(openCodec(nullptr));
    EXPECT_FALSE(openCodec(inMemory({})));
    EXPECT_FALSE(openCodec(inMemory(Bytes(100'000, 0))));
    std::mt19937 random(4);
    Bytes noise(100'000);
    std::ranges::generate(noise, [&] { return static_cast<std::uint8_t>(random()); });
    EXPECT_FALSE(openCodec(inMemory(std::move(noise))));
}

}  // namespace

}  // namespace orbinex
