// Files that are cut short, damaged, or try to have others opened.

#include <string_view>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "audio/ffmpeg/endless_media_file.h"
#include "audio/ffmpeg/ffmpeg_audio_file.h"
#include "audio/ffmpeg/made_media.h"
#include "audio/linux/temporary_folder.h"

namespace orbinex {

namespace {

using namespace test;

/// Opens and reads whatever this is. Returns whether it opened.
bool surviveReading(Bytes bytes, unsigned seed) {
    const auto disc = std::make_shared<Disc>();
    disc->bytes = std::move(bytes);
    std::unique_ptr<MediaFile> media = std::make_unique<DiscMediaFile>(disc);
    const auto file = FFmpegAudioFile::open(media);
    if (!file) return false;
    EXPECT_GE(file->totalSampleFrames(), 1);
    EXPECT_GT(file->sampleRate(), 0);
    readAtRandom(*file, seed, 4);
    return true;
}

TEST(HostileMedia, cutShortAnywhereIsReadOrRefused) {
    std::mt19937 random(1);
    int opened = 0;
    for (const auto& medium : madeMedia()) {
        SCOPED_TRACE(medium.name);
        for (int i = 0; i < 2 * rounds; ++i) {
            auto bytes = medium.bytes;
            bytes.resize(i < rounds ? random() % 4096 : random() % medium.bytes.size());
            opened += surviveReading(std::move(bytes), static_cast<unsigned>(i)) ? 1 : 0;
        }
    }
    EXPECT_GT(opened, 5 * rounds);
}

TEST(HostileMedia, damagedAnywhereIsReadOrRefused) {
    std::mt19937 random(2);
    int opened = 0;
    for (const auto& medium : madeMedia()) {
        SCOPED_TRACE(medium.name);
        for (int i = 0; i < 3 * rounds; ++i) {
            auto bytes = medium.bytes;
            // Headers are at the beginning, and in MP4 and its kin at the end.
            const std::size_t head = std::min<std::size_t>(2000, bytes.size());
            for (auto flips = 1 + random() % 30; flips > 0; --flips) {
                const std::size_t at = random() % head;
                const std::size_t places[] = {at, bytes.size() - 1 - at, random() % bytes.size()};
                bytes[places[i % 3]] = static_cast<std::uint8_t>(random());
            }
            opened += surviveReading(std::move(bytes), static_cast<unsigned>(i)) ? 1 : 0;
        }
    }
    EXPECT_GT(opened, 20 * rounds);
}

TEST(HostileMedia, thatNamesOtherFilesIsRefused) {
    const TemporaryFolder folder;
    const auto target = folder.path("target.ts");
    const auto& medium = madeMedium("aac-video.ts");
    std::ofstream(target, std::ios::binary)
        .write(reinterpret_cast<const char*>(medium.bytes.data()),
               static_cast<std::streamsize>(medium.bytes.size()));
    const std::string texts[] = {
        "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n" + target + "\n#EXT-X-ENDLIST\n",
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nfile://" + target + "\n",
        "ffconcat version 1.0\nfile '" + target + "'\n",
        "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" "
        "type=\"static\"><Period><AdaptationSet "
        "mimeType=\"audio/mp4\"><Representation id=\"1\"><BaseURL>" +
            target + "</BaseURL></Representation></AdaptationSet></Period></MPD>",
        "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nm=audio 5004 RTP/AVP 0\n",
        "[Script Info]\n" + target,
        "[playlist]\nFile1=" + target + "\n",
        "",
        "nothing",
    };
    for (const auto& text : texts) {
        auto media = inMemory(Bytes(text.begin(), text.end()));
        EXPECT_FALSE(FFmpegAudioFile::open(media)) << text;
        EXPECT_TRUE(media);
    }
}

TEST(HostileMedia, ofATrackWhoseSamplesAreInAnotherFileGivesNothingOfThatFile) {
    auto bytes = madeMedium("s16.mov").bytes;
    // A data reference of a track says by a flag that the samples are in this very file.
    const std::string reference("alis\0\0\0\1", 8);
    const std::string own("url \0\0\0\1", 8);
    bool isFound = false;
    for (const auto& mark : {reference, own}) {
        const auto found = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
        if (found == bytes.end()) continue;
        isFound = true;
        *(found + 7) = 0;
    }
    EXPECT_TRUE(isFound);
    surviveReading(std::move(bytes), 1);
}

std::size_t find(const Bytes& bytes, std::string_view mark) {
    const auto found = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
    EXPECT_NE(found, bytes.end()) << mark;
    return static_cast<std::size_t>(found - bytes.begin());
}

std::uint32_t numberAt(const Bytes& bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) number = number << 8U | bytes[at + i];
    return number;
}

void setNumber(Bytes& bytes, std::size_t at, std::uint32_t number) {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
}

TEST(HostileMedia, whoseTracksClaimMillionsOfPacketsTakesNoMemoryForAll) {
    auto bytes = madeMedium("aac.m4a").bytes;
    // Behind a box's name and version: one size for so many samples, all of them in the first chunk.
    constexpr std::uint32_t samples = 1'000'000;
    const auto sizes = find(bytes, "stsz") + 8;
    setNumber(bytes, sizes, 1);
    setNumber(bytes, sizes + 4, samples);
    setNumber(bytes, find(bytes, "stts") + 12, samples);
    setNumber(bytes, find(bytes, "stsc") + 16, samples);
    const auto movie = find(bytes, "moov") - 4;
    const auto track = find(bytes, "trak") - 4;
    const Bytes copy(bytes.begin() + static_cast<std::ptrdiff_t>(track),
                     bytes.begin() + static_cast<std::ptrdiff_t>(track + numberAt(bytes, track)));
    for (int i = 0; i < 100; ++i)
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(track), copy.begin(), copy.end());
    setNumber(bytes, movie, numberAt(bytes, movie) + 100 * static_cast<std::uint32_t>(copy.size()));

    rusage before{};
    rusage after{};
    ::getrusage(RUSAGE_SELF, &before);
    auto media = inMemory(std::move(bytes));
    EXPECT_FALSE(FFmpegAudioFile::open(media));
    ::getrusage(RUSAGE_SELF, &after);
    constexpr long mostKiB = 700 << 10;
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, mostKiB);
}

TEST(HostileMedia, readsNoMoreOfAFileThanItGrants) {
    // A stream that never comes to another packet: zeros without end behind a good beginning.
    for (const auto* name : {"aac-video.ts", "no-length.mp3", "aac.aac", "opus.ogg", "s16.mkv"}) {
        const auto disc = std::make_shared<EndlessDisc>();
        disc->beginning = madeMedium(name).bytes;
        disc->beginning.resize(disc->beginning.size() / 2);
        disc->repeated.resize(1U << 20U);
        disc->size = std::uint64_t{10} << 30U;
        std::unique_ptr<MediaFile> media = std::make_unique<EndlessMediaFile>(disc);
        const auto file = FFmpegAudioFile::open(media);
        EXPECT_LE(disc->bytesRead, 130U << 20U) << name;
        if (file) readAtRandom(*file, 3, 0);
        EXPECT_LE(disc->bytesRead, 400U << 20U) << name;
    }
}

}  // namespace

}  // namespace orbinex
