#include "audio/linux/linux_clip_media.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "audio/background/background_source_opener.h"
#include "audio/background/media_threads.h"
#include "audio/background/patience.h"
#include "audio/linux/temporary_folder.h"

namespace orbinex {

namespace {

using test::TemporaryFolder;

/// Takes a file's bytes for 16-bit samples of one channel.
class RawAudioFile final : public AudioFile {
  public:
    RawAudioFile(std::unique_ptr<MediaFile> file, bool prefersReadingOn)
        : file_(std::move(file)),
          frames_(static_cast<std::int64_t>(file_->size().value_or(0) / 2)),
          prefersReadingOn_(prefersReadingOn) {}

    double sampleRate() const override { return 48'000; }
    std::int64_t totalSampleFrames() const override { return frames_; }
    int channelCount() const override { return 1; }
    SampleType sampleType() const override { return SampleType::int16; }
    bool prefersReadingOn() const override { return prefersReadingOn_; }
    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override {
        const auto room = std::as_writable_bytes(buffer.shorts()).first(2 * count);
        return file_->read(2 * static_cast<std::uint64_t>(start),
                           {reinterpret_cast<std::uint8_t*>(room.data()), room.size()}) /
               2;
    }

  private:
    std::unique_ptr<MediaFile> file_;
    std::int64_t frames_;
    bool prefersReadingOn_;
};

std::int16_t sampleAt(std::int64_t frame) {
    const std::array<std::uint8_t, 2> bytes{TemporaryFolder::byteAt(static_cast<std::size_t>(2 * frame)),
                                            TemporaryFolder::byteAt(static_cast<std::size_t>(2 * frame + 1))};
    std::int16_t sample = 0;
    std::memcpy(&sample, bytes.data(), 2);
    return sample;
}

struct World {
    explicit World(bool prefersReadingOn = false)
        : media(std::make_shared<LinuxClipMedia>(
              [prefersReadingOn](std::unique_ptr<MediaFile> file) {
                  return std::make_unique<RawAudioFile>(std::move(file), prefersReadingOn);
              },
              threads.workers())) {}

    TemporaryFolder folder;
    MediaThreads threads;
    std::shared_ptr<LinuxClipMedia> media;
};

TEST(LinuxClipMedia, findsFilesByTheirPath) {
    World world;
    const auto path = world.folder.file("a.wav", 100);
    EXPECT_TRUE(world.media->exists(path));
    EXPECT_TRUE(world.media->openFile(path));
    EXPECT_TRUE(world.media->openAudioFile(path));
    for (const auto& other : {path + "x", path + std::string("\0", 1), std::string()}) {
        EXPECT_FALSE(world.media->exists(other));
        EXPECT_FALSE(world.media->openFile(other));
        EXPECT_FALSE(world.media->openAudioFile(other));
    }
    EXPECT_FALSE(world.media->openAudioFile("/dev/zero"));
}

TEST(LinuxClipMedia, decodesInTheBackgroundWhatPrefersReadingOn) {
    World world(true);
    const auto file = world.media->openAudioFile(world.folder.file("a", 200'000));
    ASSERT_TRUE(file);
    EXPECT_FALSE(file->prefersReadingOn());
    EXPECT_EQ(file->totalSampleFrames(), 100'000);
}

TEST(LinuxClipMedia, isReadWhileThreadsOpenDecodeAndClose) {
    for (const bool prefersReadingOn : {false, true}) {
        World world(prefersReadingOn);
        BackgroundSourceOpener opener(world.media, world.threads.workers());
        for (int file = 0; file < 8; ++file) {
            const auto path = world.folder.file(std::to_string(file), 200'000);
            const test::Patience patience;
            auto source = opener.open(path);
            while (!source && patience.isLeft()) source = opener.open(path);
            ASSERT_TRUE(source);
            const auto reader = std::get<std::shared_ptr<AVAudioClipReader>>(*source);
            std::vector<float> mono(1'024);
            MonoRead read;
            while (read.framesRead < 1'024 && patience.isLeft()) read = reader->readMono(50'000, 1'024, mono);
            ASSERT_EQ(read.framesRead, 1'024U);
            for (std::size_t i = 0; i < mono.size(); ++i)
                ASSERT_EQ(mono[i],
                          static_cast<float>(sampleAt(50'000 + static_cast<std::int64_t>(i))) / 32768);
        }
    }
}

}  // namespace

}  // namespace orbinex
