#include "audio/background/background_source_opener.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/background/manual_media_workers.h"
#include "audio/fairlight_audio_meter_engine.h"
#include "sim/simulated_clip_media.h"

namespace orbinex {

namespace {

using namespace std::chrono_literals;

/// Media whose files are all there unless said otherwise, and that count how many are open.
class CountedMedia final : public ClipMedia {
  public:
    explicit CountedMedia(std::shared_ptr<test::ManualMediaWorkers> workers)
        : workers_(std::move(workers)),
          sound_(std::make_shared<SimulatedSound>(
              SimulatedSound{.sample = [](std::int64_t, int) { return 0.5F; }})) {}

    bool isBroken = false;
    int openings = 0;
    int openFiles = 0;

    bool exists(const std::string&) override { return !isBroken; }
    std::unique_ptr<MediaFile> openFile(const std::string&) override { return nullptr; }
    std::unique_ptr<AudioFile> openAudioFile(const std::string& path) override {
        EXPECT_TRUE(workers_->isWorkerThread());
        ++openings;
        if (path == "bomb") throw std::bad_alloc();
        if (isBroken) return nullptr;
        return std::make_unique<CountedFile>(sound_, openFiles, workers_);
    }

  private:
    class CountedFile final : public AudioFile {
      public:
        CountedFile(std::shared_ptr<const SimulatedSound> sound, int& openFiles,
                    std::shared_ptr<test::ManualMediaWorkers> workers)
            : file_(std::move(sound)), openFiles_(openFiles), workers_(std::move(workers)) {
            ++openFiles_;
        }
        ~CountedFile() override {
            EXPECT_TRUE(workers_->isWorkerThread()) << "a disk may hang when a file is closed";
            --openFiles_;
        }
        double sampleRate() const override { return file_.sampleRate(); }
        std::int64_t totalSampleFrames() const override { return file_.totalSampleFrames(); }
        int channelCount() const override { return file_.channelCount(); }
        SampleType sampleType() const override { return file_.sampleType(); }
        bool prefersReadingOn() const override { return true; }
        std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) override {
            return file_.read(start, count, buffer);
        }

      private:
        SimulatedAudioFile file_;
        int& openFiles_;
        std::shared_ptr<test::ManualMediaWorkers> workers_;
    };

    std::shared_ptr<test::ManualMediaWorkers> workers_;
    std::shared_ptr<const SimulatedSound> sound_;
};

struct World {
    std::shared_ptr<test::ManualMediaWorkers> workers = std::make_shared<test::ManualMediaWorkers>();
    test::ManualMediaWorkers::AtEnd atEnd{workers};
    std::shared_ptr<CountedMedia> media = std::make_shared<CountedMedia>(workers);
    BackgroundSourceOpener opener{media, workers};

    /// What kind of source there is: "none" as long as it is being opened.
    std::string kind(const std::string& path) {
        const auto source = opener.open(path);
        if (!source) return "none";
        return std::holds_alternative<UnsupportedSource>(*source) ? "unsupported" : "audio";
    }
    std::shared_ptr<AVAudioClipReader> reader(const std::string& path) {
        const auto source = opener.open(path);
        return source ? std::get<std::shared_ptr<AVAudioClipReader>>(*source) : nullptr;
    }
    /// Every path once, and the background keeps up.
    void askForAll(int paths) {
        for (int i = 0; i < paths; ++i) kind(std::to_string(i));
        workers->runAll();
    }
};

TEST(BackgroundSourceOpener, opensInTheBackgroundAndWaitsOnceAtMost) {
    World world;
    EXPECT_EQ(world.kind("a"), "none");
    EXPECT_EQ(world.kind("a"), "none");
    EXPECT_EQ(world.workers->waits, 1);
    world.workers->runAll();
    EXPECT_EQ(world.kind("a"), "audio");
    EXPECT_EQ(world.media->openings, 1);

    world.workers->stepsPerWait = 1;
    EXPECT_EQ(world.kind("b"), "audio") << "what opens in time is there at once";
}

TEST(BackgroundSourceOpener, keepsWhatIsAskedForAgainAndAgain) {
    World world;
    // A caller that forgets all its sources in every tick.
    for (int tick = 0; tick < 500; ++tick) {
        world.askForAll(32);
        world.workers->time += 66ms;
    }
    EXPECT_EQ(world.media->openings, 32);
    EXPECT_EQ(world.media->openFiles, 32);
}

TEST(BackgroundSourceOpener, letsGoOfWhatNobodyUses) {
    World world;
    world.askForAll(20);
    auto held = world.reader("3");
    const auto tidy = [&] {
        world.workers->time += 11s;
        world.kind("0");
        world.workers->runAll();
    };
    tidy();
    EXPECT_EQ(world.media->openFiles, 2) << "the one asked for, and the one that is held";
    EXPECT_EQ(world.reader("3"), held);
    held.reset();
    tidy();
    EXPECT_EQ(world.media->openFiles, 1);
}

TEST(BackgroundSourceOpener, losesNoMeterWhenTheEngineForgetsItsSources) {
    World world;
    FairlightAudioMeterEngine engine(world.opener);
    std::vector<DAWTrackState> tracks;
    ResolveTrackClips clips;
    const auto addTrack = [&](std::int64_t index) {
        tracks.emplace_back().index = index;
        clips[index] = {
            .trackIndex = index, .hasActiveClip = true, .filePath = "/" + std::to_string(index) + ".wav"};
    };
    const auto unavailable = [&] {
        const auto& packet = engine.makeMeterPacket({.tracks = tracks,
                                                     .clipMetaByIndex = clips,
                                                     .playheadFrame = 0,
                                                     .lastPlayheadUpdateUptime = world.workers->time,
                                                     .isPlaying = false,
                                                     .playbackSpeed = "0X",
                                                     .framesPerSecond = 24,
                                                     .selectedTrackIndex = 1,
                                                     .editorRunning = true,
                                                     .masterVolumeDB = 0,
                                                     .masterMuted = false},
                                                    world.workers->time);
        world.workers->runAll();
        world.workers->time += 66ms;
        return std::ranges::count(packet.channelMeters, TrackMeterStatus::unavailable,
                                  &TrackChannelMeter::status);
    };
    for (std::int64_t index = 1; index <= 24; ++index) addTrack(index);
    EXPECT_EQ(unavailable(), 24);
    for (int tick = 0; tick < 11'000 / 66; ++tick) ASSERT_EQ(unavailable(), 0) << tick;
    addTrack(25);
    EXPECT_EQ(unavailable(), 1) << "only the new one is still to come";
    for (int tick = 0; tick < 60'000 / 66; ++tick) ASSERT_EQ(unavailable(), 0) << tick;
    EXPECT_EQ(world.media->openings, 25);
}

TEST(BackgroundSourceOpener, holdsNoMoreThanItMayAndStaysWithThose) {
    World world;
    for (int tick = 0; tick < 10; ++tick) {
        world.askForAll(200);
        world.workers->time += 66ms;
    }
    EXPECT_EQ(world.media->openFiles, BackgroundSourceOpener::mostSources);
    EXPECT_EQ(world.media->openings, BackgroundSourceOpener::mostSources);
    EXPECT_EQ(world.kind("150"), "none");
    world.workers->time += 2s;
    EXPECT_EQ(world.kind("150"), "none");
    world.workers->runAll();
    EXPECT_EQ(world.kind("150"), "audio") << "others are not in use any more";
    EXPECT_EQ(world.media->openFiles, BackgroundSourceOpener::mostSources);
}

TEST(BackgroundSourceOpener, triesAgainAfterAFailure) {
    World world;
    world.media->isBroken = true;
    EXPECT_EQ(world.kind("a"), "none");
    world.workers->runAll();
    world.workers->time += 2s;
    EXPECT_EQ(world.kind("a"), "unsupported");
    world.media->isBroken = false;
    world.workers->time += 1ms;
    EXPECT_EQ(world.kind("a"), "none");
    world.workers->runAll();
    EXPECT_EQ(world.kind("a"), "audio");
    EXPECT_EQ(world.media->openings, 2);

    EXPECT_EQ(world.kind("bomb"), "none");
    world.workers->runAll();
    EXPECT_EQ(world.kind("bomb"), "unsupported");
}

TEST(BackgroundSourceOpener, doesNotBeginAnewWhatHangs) {
    World world;
    world.kind("a");
    for (int i = 0; i < 100; ++i) {
        world.workers->time += 20s;
        EXPECT_EQ(world.kind("a"), "none");
    }
    world.workers->runAll();
    EXPECT_EQ(world.media->openings, 1);
}

TEST(BackgroundSourceOpener, leavesThreadsForOtherFilesWhereFilesHang) {
    World world;
    // Nothing that is begun ever ends.
    const auto ask = [&world](const std::string& folder, int files) {
        for (int i = 0; i < files; ++i) world.kind(folder + std::to_string(i) + ".wav");
        return world.workers->tasks();
    };
    EXPECT_EQ(ask("/net/disc/card/", 20), 4U);
    EXPECT_EQ(ask("/net/disc/card/", 20), 4U);
    EXPECT_EQ(ask("/net/disc/other/", 20), 8U);
    EXPECT_EQ(ask("/net/disc/third/", 20), 8U);
    for (int card = 0; card < 100; ++card) ask("/net/disc/" + std::to_string(card) + "/a/b/c/", 5);
    EXPECT_EQ(world.workers->tasks(), BackgroundSourceOpener::mostOpeningsInTree);
    EXPECT_EQ(ask("/home/clips/", 20), BackgroundSourceOpener::mostOpeningsInTree + 4);
    world.workers->runAll();
    EXPECT_EQ(world.kind("/home/clips/0.wav"), "audio");
    EXPECT_EQ(world.kind("/net/disc/card/4.wav"), "none");
    world.workers->runAll();
    EXPECT_EQ(world.kind("/net/disc/card/4.wav"), "audio");
}

TEST(BackgroundSourceOpener, opensNothingMoreOnceItIsGone) {
    World world;
    {
        BackgroundSourceOpener opener(world.media, world.workers);
        opener.open("a");
        world.workers->runAll();
        opener.open("b");
    }
    world.workers->runAll();
    EXPECT_EQ(world.media->openings, 1);
    EXPECT_EQ(world.media->openFiles, 0);
}

}  // namespace

}  // namespace orbinex
