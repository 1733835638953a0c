#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "audio/audio_file.h"
#include "audio/sndfile/disc_media_file.h"

namespace orbinex::test {

#ifdef __SANITIZE_ADDRESS__
inline constexpr int rounds = 1;
#else
inline constexpr int rounds = 4;
#endif

/// Every sample of a stream from its first frame to its last, all channels side by side.
struct StraightDecode {
    int channelCount = 2;
    std::vector<float> samples;

    [[nodiscard]] std::int64_t length() const {
        return static_cast<std::int64_t>(samples.size()) / channelCount;
    }
};

/// The largest difference between samples that were read and the straight decode.
inline float differenceOf(AudioFile& file, PCMBuffer& buffer, const StraightDecode& straight,
                          std::int64_t start, std::int64_t frames) {
    float largest = 0;
    const auto channels = file.channelCount();
    for (std::int64_t i = 0; i < frames * channels; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const float sample = file.sampleType() == SampleType::int16
                                 ? static_cast<float>(buffer.shorts()[at]) / 32768.0F
                                 : buffer.floats()[at];
        const auto frame = start + i / channels;
        const float truth =
            straight.samples[static_cast<std::size_t>(frame * straight.channelCount + i % channels)];
        largest = std::max(largest, std::abs(sample - truth));
    }
    return largest;
}

/// Reads, and returns the largest difference from the straight decode in a first or second channel. A short
/// read counts as a difference of 9.
inline float differenceOfRead(AudioFile& file, const StraightDecode& straight, std::int64_t start,
                              std::int64_t count) {
    PCMBuffer buffer(file.sampleType(), file.channelCount());
    const auto read = static_cast<std::int64_t>(file.read(start, static_cast<std::size_t>(count), buffer));
    if (read != std::min({count, straight.length() - start, std::int64_t{PCMBuffer::frameCapacity}}))
        return 9;
    return differenceOf(file, buffer, straight, start, read);
}

/// The largest difference when it is read from its start to its end.
inline float differenceOfStraightRead(AudioFile& file, const StraightDecode& straight) {
    float largest = 0;
    for (std::int64_t start = 0; start < straight.length(); start += 1500)
        largest = std::max(largest, differenceOfRead(file, straight, start, 1500));
    return largest;
}

/// The largest difference of all reads of the ways in which a file is read: anywhere, on and on, backwards,
/// in turn at two places, and again and again at one.
inline float differenceOfReads(AudioFile& file, const StraightDecode& straight, int reads) {
    std::mt19937 random(20240517);
    const auto length = straight.length();
    const auto anywhere = [&] { return static_cast<std::int64_t>(random()) % length; };
    const auto some = [&] { return 1 + static_cast<std::int64_t>(random()) % 2048; };
    float largest = 0;
    const auto compare = [&](std::int64_t start, std::int64_t count) {
        if (start >= 0 && start < length)
            largest = std::max(largest, differenceOfRead(file, straight, start, count));
    };
    for (int i = 0; i < reads; ++i) compare(anywhere(), some());
    const auto step = length / (reads / 10 + 1) + 1;
    for (std::int64_t at = length - 1; at >= 0; at -= step) compare(at, 1024);
    for (std::int64_t at = 0, i = 0; i < reads / 4 && at < length; ++i) {
        const auto count = some();
        compare(at, count);
        at += count;
    }
    const auto here = anywhere();
    const auto there = anywhere();
    for (std::int64_t i = 0; i < reads / 10; ++i) {
        compare(here + i * 800, 1024);
        compare(there + i * 800, 1024);
        compare(here, 512);
    }
    return largest;
}

/// That reads end where the file does, and where the buffer does.
inline void expectNothingIsReadOutside(AudioFile& file) {
    const auto length = file.totalSampleFrames();
    PCMBuffer buffer(file.sampleType(), file.channelCount());
    const struct {
        std::int64_t start;
        std::size_t count;
        std::size_t expected;
    } rows[] = {{-1, 10, 0},          {length, 10, 0},
                {length + 1, 10, 0},  {0, 0, 0},
                {length - 1, 10, 1},  {length - 1024, 4096, 1024},
                {0, 1U << 30U, 2048}, {std::int64_t{1} << 62, 10, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(file.read(row.start, row.count, buffer), row.expected) << row.start << " " << row.count;
}

/// Reads a file that may be anything, all over the place.
inline void readAtRandom(AudioFile& file, unsigned seed, int reads) {
    std::mt19937_64 random(seed);
    PCMBuffer buffer(file.sampleType(), file.channelCount());
    for (int i = 0; i < reads; ++i) {
        const auto start =
            static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(file.totalSampleFrames()));
        file.read(i % 5 == 4 ? 0 : start, 1 + random() % 2048, buffer);
    }
    file.read(file.totalSampleFrames() - 1, 2048, buffer);
}

/// That what is read of a file whose disc goes now and then, or that is cut short, is right, and that all can
/// be read once that is over.
inline void expectTheSameAfterTheDiscWasGone(AudioFile& file, Disc& disc, const StraightDecode& straight) {
    const auto whole = disc.bytes;
    PCMBuffer buffer(file.sampleType(), file.channelCount());
    std::mt19937 random(3);
    const auto anywhere = [&] { return static_cast<std::int64_t>(random()) % straight.length(); };
    for (int round = 0; round < rounds; ++round) {
        disc.readsLeft = static_cast<int>(random() % 8);
        for (int i = 0; i < 12; ++i) {
            const auto start = anywhere();
            const auto read = static_cast<std::int64_t>(file.read(start, 1024, buffer));
            EXPECT_EQ(differenceOf(file, buffer, straight, start, read), 0) << start;
        }
        disc.readsLeft = -1;
        disc.isThere = true;
        const auto start = anywhere();
        EXPECT_EQ(differenceOfRead(file, straight, start, 1024), 0) << start;
        disc.bytes.resize(random() % whole.size());
        readAtRandom(file, static_cast<unsigned>(round), 3);
        disc.bytes = whole;
        EXPECT_EQ(differenceOfRead(file, straight, start, 1024), 0) << "it was cut short";
    }
}

}  // namespace orbinex::test
