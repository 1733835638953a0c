#include "audio/sndfile/sndfile_audio_file.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <sndfile.h>

#include "audio/linux/temporary_folder.h"
#include "audio/sndfile/disc_media_file.h"
#include "audio/sndfile/straight_decode.h"
#include "support/allocation_counter.h"

namespace orbinex {

namespace {

using namespace test;

struct Kind {
    const char* name;
    int format;
    SampleType sampleType = SampleType::float32;
    bool isCompressed = false;
    /// Of the samples that it is made from.
    int bits = 16;
    /// It has other samples than it was made from.
    bool isLossy = false;
};

const Kind kinds[] = {
    {"WAV 16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, SampleType::int16},
    {"WAV 8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SampleType::float32, false, 8},
    {"WAV 24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, SampleType::float32, false, 24},
    {"WAV 32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, SampleType::float32, false, 24},
    {"WAV float", SF_FORMAT_WAV | SF_FORMAT_FLOAT, SampleType::float32, false, 24},
    {"WAV double", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, SampleType::float32, false, 24},
    {"RF64 16", SF_FORMAT_RF64 | SF_FORMAT_PCM_16, SampleType::int16},
    {"W64 24", SF_FORMAT_W64 | SF_FORMAT_PCM_24, SampleType::float32, false, 24},
    {"AIFF 16", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, SampleType::int16},
    {"AIFF 8", SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, SampleType::float32, false, 8},
    {"AIFF 16 sowt", SF_FORMAT_AIFF | SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE, SampleType::int16},
    {"AIFF float", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, SampleType::float32, false, 24},
    {"AIFF 24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, SampleType::float32, false, 24},
    {"CAF 16", SF_FORMAT_CAF | SF_FORMAT_PCM_16, SampleType::int16},
    {"CAF float", SF_FORMAT_CAF | SF_FORMAT_FLOAT, SampleType::float32, false, 24},
    {"CAF ALAC 16", SF_FORMAT_CAF | SF_FORMAT_ALAC_16, SampleType::int16, true},
    {"WAV A-law", SF_FORMAT_WAV | SF_FORMAT_ALAW, SampleType::float32, false, 16, true},
    {"WAV u-law", SF_FORMAT_WAV | SF_FORMAT_ULAW, SampleType::float32, false, 16, true},
    {"WAV IMA ADPCM", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, SampleType::float32, true, 16, true},
    {"WAV MS ADPCM", SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, SampleType::float32, true, 16, true},
    {"FLAC 16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SampleType::int16, true},
    {"FLAC 24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SampleType::float32, true, 24},
};

constexpr int seconds = 2;

/// A rising tone in noise, another in each channel, exact in so many bits.
StraightDecode signal(int sampleRate, int channelCount, int bits) {
    StraightDecode made{channelCount, {}};
    std::mt19937 random(7);
    const double steps = std::exp2(bits - 1);
    for (int i = 0; i < sampleRate * seconds; ++i) {
        for (int channel = 0; channel < channelCount; ++channel) {
            const double time = static_cast<double>(i) / sampleRate;
            const double tone = std::sin(6.2831853 * time * (200 + 100 * channel + 300 * time));
            const double noise = static_cast<double>(random() % 2001) / 1000 - 1;
            made.samples.push_back(
                static_cast<float>(std::floor((tone * 0.5 + noise * 0.1) * steps) / steps));
        }
    }
    return made;
}

Bytes write(const StraightDecode& samples, int sampleRate, int format) {
    const TemporaryFolder folder;
    const auto path = folder.path("medium");
    SF_INFO info{};
    info.samplerate = sampleRate;
    info.channels = samples.channelCount;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    EXPECT_TRUE(file) << sf_strerror(nullptr);
    if (!file) return {};
    SF_BROADCAST_INFO origin{};
    std::ranges::copy(std::string_view("A take"), origin.description);
    sf_command(file, SFC_SET_BROADCAST_INFO, &origin, sizeof origin);
    // Floats would be scaled to the largest integer rather than to full scale.
    const int subtype = format & SF_FORMAT_SUBMASK;
    if (subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE) {
        EXPECT_EQ(sf_writef_float(file, samples.samples.data(), samples.length()), samples.length());
    } else {
        std::vector<int> integers(samples.samples.size());
        std::ranges::transform(samples.samples, integers.begin(), [](float sample) {
            return static_cast<int>(static_cast<double>(sample) * 2147483648.0);
        });
        EXPECT_EQ(sf_writef_int(file, integers.data(), samples.length()), samples.length());
    }
    sf_close(file);
    return bytesOf(path);
}

/// What the file is when it is read from its beginning to its end.
StraightDecode decode(const Bytes& bytes) {
    const TemporaryFolder folder;
    const auto path = folder.path("medium");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    EXPECT_TRUE(file);
    if (!file) return {};
    StraightDecode decoded{info.channels, {}};
    decoded.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_float(file, decoded.samples.data(), info.frames), info.frames);
    sf_close(file);
    return decoded;
}

std::unique_ptr<SndfileAudioFile> open(Bytes bytes) {
    auto media = inMemory(std::move(bytes));
    return SndfileAudioFile::open(media);
}

TEST(SndfileAudioFile, givesTheSamplesThatWereWrittenWhereverItReads) {
    const struct {
        int sampleRate;
        int channelCount;
    } shapes[] = {{44100, 1}, {48000, 2}, {96000, 2}, {48000, 6}};
    for (const auto& kind : kinds) {
        for (const auto& shape : shapes) {
            SCOPED_TRACE(kind.name + (" x " + std::to_string(shape.channelCount)));
            if (kind.isLossy && shape.channelCount > 2) continue;
            auto straight = signal(shape.sampleRate, shape.channelCount, kind.bits);
            auto bytes = write(straight, shape.sampleRate, kind.format);
            if (kind.isLossy) straight = decode(bytes);
            const auto file = open(std::move(bytes));
            ASSERT_TRUE(file);
            EXPECT_EQ(file->sampleRate(), shape.sampleRate);
            EXPECT_EQ(file->channelCount(), std::min(shape.channelCount, 2));
            EXPECT_EQ(file->totalSampleFrames(), straight.length());
            EXPECT_EQ(file->sampleType(), kind.sampleType);
            EXPECT_EQ(file->prefersReadingOn(), kind.isCompressed);
            expectNothingIsReadOutside(*file);
            EXPECT_EQ(differenceOfReads(*file, straight, (kind.isCompressed ? 250 : 500) * rounds), 0);
        }
    }
}

TEST(SndfileAudioFile, leavesTheMediaOfWhatItDoesNotRead) {
    const auto samples = signal(48000, 1, 16);
    const Bytes mpeg = write(samples, 48000, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III);
    Bytes behindText(3000 + mpeg.size(), 'x');
    std::ranges::copy(mpeg, behindText.begin() + 3000);
    const Bytes empty{};
    const Bytes noFrames = write({1, {}}, 48000, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const Bytes ogg = write(samples, 48000, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    for (const auto& bytes : {mpeg, behindText, empty, noFrames, ogg}) {
        auto media = inMemory(bytes);
        EXPECT_FALSE(SndfileAudioFile::open(media)) << bytes.size();
        EXPECT_TRUE(media);
    }
    auto media = inMemory(write(samples, 48000, SF_FORMAT_AIFF | SF_FORMAT_PCM_16));
    EXPECT_TRUE(SndfileAudioFile::open(media));
    EXPECT_FALSE(media);
    EXPECT_FALSE(SndfileAudioFile::open(media));
}

TEST(SndfileAudioFile, allocatesNothingWhileItReadsUncompressedMedia) {
    for (const int channelCount : {2, 6}) {
        const auto samples = signal(48000, channelCount, 16);
        const auto file = open(write(samples, 48000, SF_FORMAT_WAV | SF_FORMAT_PCM_16));
        ASSERT_TRUE(file);
        PCMBuffer buffer(file->sampleType(), file->channelCount());
        EXPECT_EQ(allocationsDuring([&] {
                      for (std::int64_t start = 0; start < 100'000; start += 777)
                          file->read(start, 1024, buffer);
                  }),
                  0U);
    }
}

TEST(SndfileAudioFile, readsTheSameAgainAfterTheDiscWasGoneOrTheFileCutShort) {
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const auto disc =
            std::make_shared<Disc>(Disc{write(signal(48000, 2, kind.bits), 48000, kind.format)});
        const auto straight = decode(disc->bytes);
        std::unique_ptr<MediaFile> media = std::make_unique<DiscMediaFile>(disc);
        const auto file = SndfileAudioFile::open(media);
        ASSERT_TRUE(file);
        expectTheSameAfterTheDiscWasGone(*file, *disc, straight);
    }
}

TEST(SndfileAudioFile, bearsFilesThatAreCutShortOrDamaged) {
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        auto samples = signal(8000, 2, kind.bits);
        samples.samples.resize(8000);
        const auto whole = write(samples, 8000, kind.format);
        std::mt19937 random(11);
        int opened = 0;
        const auto check = [&](Bytes bytes) {
            const auto file = open(std::move(bytes));
            if (!file) return;
            ++opened;
            EXPECT_GE(file->totalSampleFrames(), 1);
            readAtRandom(*file, 5, 6);
        };
        for (int i = 0; i < 10 * rounds; ++i) {
            auto cut = whole;
            cut.resize(i < 5 * rounds ? random() % 200 : random() % whole.size());
            check(std::move(cut));
            auto damaged = whole;
            for (auto flips = 1 + random() % 20; flips > 0; --flips) {
                const auto at =
                    random() % (i % 2 == 0 ? std::min<std::size_t>(120, whole.size()) : whole.size());
                damaged[at] = static_cast<std::uint8_t>(random());
            }
            check(std::move(damaged));
        }
        EXPECT_GT(opened, rounds);
    }
}

}  // namespace

}  // namespace orbinex
