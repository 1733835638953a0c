#include "audio/background/chunked_audio_file.h"

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "audio/background/manual_media_workers.h"
#include "audio/background/media_threads.h"
#include "audio/background/meter_tick.h"
#include "audio/background/patience.h"
#include "audio/background/watched_audio_file.h"
#include "support/allocation_counter.h"

namespace orbinex {

namespace {

using namespace std::chrono_literals;
using test::ManualMediaWorkers;
using test::readAsMeterTick;
using test::WatchedAudio;
using test::WatchedAudioFile;

/// The samples that a read gives, as bytes.
std::vector<std::uint8_t> samplesRead(AudioFile& file, std::int64_t start, std::size_t count) {
    PCMBuffer buffer(file.sampleType(), file.channelCount());
    const auto frames = file.read(start, count, buffer);
    const auto bytes = file.sampleType() == SampleType::int16 ? std::as_bytes(buffer.shorts())
                                                              : std::as_bytes(buffer.floats());
    const auto frameBytes = bytes.size() / PCMBuffer::frameCapacity;
    std::vector<std::uint8_t> result(frames * frameBytes);
    std::ranges::transform(bytes.first(result.size()), result.begin(),
                           [](std::byte byte) { return static_cast<std::uint8_t>(byte); });
    return result;
}

struct ChunkWorld {
    std::shared_ptr<ManualMediaWorkers> workers = std::make_shared<ManualMediaWorkers>();
    ManualMediaWorkers::AtEnd atEnd{workers};
    std::shared_ptr<WatchedAudio> audio = std::make_shared<WatchedAudio>();
    PCMBuffer buffer{SampleType::float32, 2};

    ChunkWorld() {
        audio->onUse = [this] {
            EXPECT_TRUE(workers->isWorkerThread()) << "the file was used on the main thread";
        };
    }
    std::unique_ptr<ChunkedAudioFile> open() {
        return std::make_unique<ChunkedAudioFile>(std::make_unique<WatchedAudioFile>(audio), workers);
    }
};

TEST(ChunkedAudioFile, readsWhatTheFileReadsHoweverFarTheWorkersAre) {
    std::mt19937 random(20'261);
    for (const auto type : {SampleType::int16, SampleType::float32})
        for (const int channels : {1, 2})
            for (const double rate : {8'000.0, 48'000.0, 96'000.0, 192'000.0})
                for (const std::int64_t frames : {1, 4095, 4096, 4097, 100'000, 2'000'000}) {
                    ChunkWorld world;
                    *world.audio = {type, rate, frames, channels, {0, 0}, [] {}};
                    const auto chunked = world.open();
                    WatchedAudioFile direct(std::make_shared<WatchedAudio>(*world.audio));
                    for (int i = 0; i < 50; ++i) {
                        const auto start = static_cast<std::int64_t>(random() % (frames + 100)) - 50;
                        const std::size_t count = random() % 2'100;
                        world.workers->stepsPerWait = static_cast<int>(random() % 4);
                        world.workers->time += std::chrono::milliseconds(random() % 30);
                        const auto expected = samplesRead(direct, start, count);
                        const auto now = samplesRead(*chunked, start, count);
                        ASSERT_TRUE(std::equal(now.begin(), now.end(), expected.begin(),
                                               expected.begin() + static_cast<std::ptrdiff_t>(
                                                                      std::min(now.size(), expected.size()))))
                            << "a short read has other samples";
                        if (random() % 2 == 0) continue;
                        world.workers->runAll();
                        ASSERT_EQ(samplesRead(*chunked, start, count), expected)
                            << start << " " << count << " of " << frames << " at " << rate;
                    }
                }
}

TEST(ChunkedAudioFile, misreadsNothingWhileThreadsDecode) {
    const MediaThreads threads;
    auto audio = std::make_shared<WatchedAudio>();
    WatchedAudioFile direct(std::make_shared<WatchedAudio>(*audio));
    ChunkedAudioFile chunked(std::make_unique<WatchedAudioFile>(audio), threads.workers());
    std::mt19937 random(7);
    std::int64_t position = 0;
    std::size_t framesRead = 0;
    const test::Patience patience;
    for (int i = 0; i < 3'000 || (framesRead == 0 && patience.isLeft()); ++i) {
        position = random() % 50 == 0 ? static_cast<std::int64_t>(random() % 470'000) : position + 300;
        PCMBuffer buffer(SampleType::float32, 2);
        const auto frames = chunked.read(position, 256, buffer);
        framesRead += frames;
        for (std::size_t frame = 0; frame < frames; ++frame)
            ASSERT_EQ(
                buffer.floats()[2 * frame],
                static_cast<float>(audio->sample(position + static_cast<std::int64_t>(frame), 0)) / 32768);
        if (frames == 0) std::this_thread::yield();
    }
    EXPECT_GT(framesRead, 0U);
}

TEST(ChunkedAudioFile, playsWithoutMissingOrWaiting) {
    for (const double speed : {1.0, -1.0, 2.0, 0.0}) {
        ChunkWorld world;
        world.audio->frames = 2'880'000;
        const auto file = world.open();
        world.workers->stepsPerWait = 1'000;
        double playhead = 48'000 * 30;
        int ticksThatWaited = 0;
        for (int tick = 0; tick < 200; ++tick) {
            const int waits = world.workers->waits;
            readAsMeterTick(static_cast<std::int64_t>(playhead), 2'000,
                            [&](std::int64_t start, std::size_t count) {
                                EXPECT_EQ(file->read(start, count, world.buffer), count);
                            });
            ticksThatWaited += world.workers->waits > waits;
            world.workers->runAll();
            world.workers->time += 66ms;
            playhead += 3'168 * speed;
        }
        EXPECT_LE(ticksThatWaited, speed < 0 ? 2 : 1) << speed;
        const double newFrames = 3'168 * 200 * std::abs(speed) + 32'000;
        EXPECT_LE(static_cast<double>(world.audio->framesRead), newFrames + 8 * 4'096) << speed;
    }
}

TEST(ChunkedAudioFile, waitsOnceForAFileThatBringsNothing) {
    ChunkWorld world;
    const auto file = world.open();
    for (int i = 0; i < 10; ++i) EXPECT_EQ(file->read(std::int64_t{i} * 20'000, 1'024, world.buffer), 0);
    EXPECT_EQ(world.workers->waits, 1);
    world.workers->runAll();
    EXPECT_EQ(file->read(180'000, 1'024, world.buffer), 1'024);
    world.workers->stepsPerWait = 1;
    EXPECT_EQ(file->read(400'000, 1'024, world.buffer), 1'024) << "it may be waited for again";
}

TEST(ChunkedAudioFile, givesTheBeginningOfWhatIsNotAllThere) {
    ChunkWorld world;
    const auto file = world.open();
    world.workers->stepsPerWait = 1;
    EXPECT_EQ(file->read(4'000, 1'000, world.buffer), 96);
    world.workers->runAll();
    EXPECT_EQ(file->read(4'000, 1'000, world.buffer), 1'000);
}

TEST(ChunkedAudioFile, endsReadsAtDamageAndFindsOutWhenItIsMended) {
    ChunkWorld world;
    world.audio->damage = {10'000, 20'000};
    const auto file = world.open();
    world.workers->stepsPerWait = 100;
    EXPECT_EQ(file->read(9'500, 1'024, world.buffer), 500);
    EXPECT_EQ(file->read(12'000, 1'024, world.buffer), 0);
    EXPECT_EQ(file->read(30'000, 1'024, world.buffer), 1'024);
    world.workers->runAll();
    const int reads = world.audio->reads;
    EXPECT_EQ(file->read(12'000, 1'024, world.buffer), 0);
    EXPECT_EQ(world.audio->reads, reads) << "damage was read again at once";
    world.audio->damage = {0, 0};
    world.workers->time += 501ms;
    EXPECT_EQ(file->read(12'000, 1'024, world.buffer), 1'024);
    EXPECT_EQ(file->read(9'500, 1'024, world.buffer), 1'024);
}

TEST(ChunkedAudioFile, triesAgainAfterADecoderThrew) {
    ChunkWorld world;
    const auto file = world.open();
    world.workers->stepsPerWait = 100;
    world.audio->onUse = [] { throw std::bad_alloc(); };
    EXPECT_EQ(file->read(12'000, 1'024, world.buffer), 0);
    world.audio->onUse = [] {};
    world.workers->time += 501ms;
    EXPECT_EQ(file->read(12'000, 1'024, world.buffer), 1'024);
}

TEST(ChunkedAudioFile, readsNothingOutsideTheFile) {
    ChunkWorld world;
    const auto file = world.open();
    for (const std::int64_t start : {std::int64_t{-1}, INT64_MIN, std::int64_t{480'000}, INT64_MAX})
        EXPECT_EQ(file->read(start, 1'024, world.buffer), 0);
    EXPECT_EQ(file->read(0, 0, world.buffer), 0);
    EXPECT_EQ(world.workers->waits, 0);
    EXPECT_FALSE(world.workers->runStep());
}

TEST(ChunkedAudioFile, standsTheLongestFileThereCanBe) {
    ChunkWorld world;
    world.audio->frames = INT64_MAX;
    const auto file = world.open();
    world.workers->stepsPerWait = 100;
    EXPECT_EQ(file->read(INT64_MAX - 10, 1'024, world.buffer), 10);
    EXPECT_EQ(file->read(INT64_MAX - 2'000, 1'024, world.buffer), 1'024);
}

TEST(ChunkedAudioFile, allocatesNothingToRead) {
    ChunkWorld world;
    world.audio->frames = 2'880'000;
    const auto file = world.open();
    std::int64_t playhead = 1'440'000;
    const auto tick = [&] {
        readAsMeterTick(playhead, 2'000, [&](std::int64_t start, std::size_t count) {
            EXPECT_EQ(file->read(start, count, world.buffer), count);
        });
        playhead += 3'168;
        world.workers->time += 66ms;
    };
    world.workers->stepsPerWait = 100;
    tick();
    // Reading on in the background is asked for in this, and done.
    EXPECT_EQ(test::allocationsDuring([&] {
                  for (int i = 0; i < 100; ++i) {
                      tick();
                      world.workers->runAll();
                  }
              }),
              0);
}

TEST(ChunkedAudioFile, closesTheFileInTheBackground) {
    ChunkWorld world;
    auto file = world.open();
    EXPECT_EQ(file->read(0, 1'024, world.buffer), 0);
    file.reset();
    EXPECT_FALSE(world.audio->isClosed);
    world.workers->runAll();
    EXPECT_TRUE(world.audio->isClosed);
    EXPECT_EQ(world.audio->reads, 0) << "nobody wants that any more";
}

}  // namespace

}  // namespace orbinex
