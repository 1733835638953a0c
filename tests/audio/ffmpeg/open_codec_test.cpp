#include "audio/codec/open_codec.h"

#include <string_view>

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
    FileBytes disguised(mpeg.size() + 8);
    std::ranges::copy(std::string_view("free"), disguised.begin() + 4);
    std::ranges::copy(mpeg, disguised.begin() + 8);
    for (std::size_t i = 0; i < 4; ++i)
        disguised[i] = static_cast<std::uint8_t>(disguised.size() >> (24 - 8 * i));
    const auto& fragments = madeMedium("aac-fragments.mp4");
    FileBytes text(20'000, ' ');
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

TEST(OpenCodec, givesNothingForWhatHasNoAudio) {
    EXPECT_FALSE(openCodec(nullptr));
    EXPECT_FALSE(openCodec(inMemory({})));
    EXPECT_FALSE(openCodec(inMemory(FileBytes(100'000, 0))));
    std::mt19937 random(4);
    FileBytes noise(100'000);
    std::ranges::generate(noise, [&] { return static_cast<std::uint8_t>(random()); });
    EXPECT_FALSE(openCodec(inMemory(std::move(noise))));
}

}  // namespace

}  // namespace orbinex
