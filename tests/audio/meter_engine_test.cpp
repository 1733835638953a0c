#include <algorithm>
#include <limits>

#include <gmock/gmock.h>

#include "audio/fairlight_audio_meter_engine.h"
#include "audio/meter_world.h"
#include "protocol/meter_scale.h"

namespace orbinex {
namespace {

using test::MeterWorld;
using test::sine;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Status = TrackMeterStatus;

std::vector<std::int64_t> indices(const DAWMeterPacket& packet) {
    std::vector<std::int64_t> result;
    for (const auto& meter : packet.channelMeters) result.push_back(meter.trackIndex);
    return result;
}

std::vector<Status> statuses(const DAWMeterPacket& packet) {
    std::vector<Status> result;
    for (const auto& meter : packet.channelMeters) result.push_back(meter.status);
    return result;
}

double inDB(double magnitude) {
    return 20 * std::log10(magnitude);
}

TEST(MeterEngine, showsTheLevelsOfSinesThroughFadersAndSumsTheirPowerToTheMaster) {
    MeterWorld world;
    world.addTrack(1, sine(1500, 0.5));
    world.addTrack(2, sine(3000, 0.25)).volumeDB = -6;
    world.addTrack(3,
                   SimulatedSound{.sample = sine(750, 0.8, 44'100), .sampleRate = 44'100, .channelCount = 1});
    world.masterVolumeDB = -3;
    // Whole periods fit the window, and a sample falls on the crest.
    world.isPlaying = true;
    const auto& packet = world.tick();
    ASSERT_THAT(indices(packet), ElementsAre(1, 2, 3, 0));
    const double peaks[] = {0.5, 0.25 * std::pow(10, -0.3), 0.8};
    double sum = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(packet.channelMeters[i].peakDBFS, inDB(peaks[i]), 0.01) << i;
        EXPECT_NEAR(packet.channelMeters[i].rmsDBFS, inDB(peaks[i] / std::numbers::sqrt2), 0.1) << i;
        EXPECT_EQ(packet.channelMeters[i].peakHoldDBFS, packet.channelMeters[i].peakDBFS);
        sum += peaks[i] * peaks[i];
    }
    EXPECT_NEAR(packet.channelMeters[3].peakDBFS, std::min(0.0, inDB(std::sqrt(sum)) - 3), 0.01);
    EXPECT_NEAR(packet.channelMeters[3].rmsDBFS, inDB(std::sqrt(sum / 2)) - 3, 0.1);
}

TEST(MeterEngine, tellsWhyATrackIsNotHeard) {
    MeterWorld world;
    world.addTrack(1, sine(1000, 0.5));
    world.addTrack(2, sine(1000, 0.5)).isMuted = true;
    world.addTrack(3, sine(1000, 0));
    world.addTrack(4, sine(1000, 0.5));
    world.clips[4].hasActiveClip = false;
    world.addTrack(5, std::string());
    world.addTrack(6, "/missing.wav");
    world.listTrack(7);
    world.listTrack(0, true);
    world.listTrack(9, true);
    world.listTrack(-1);
    world.addTrack(8, SimulatedSound{.sample = sine(1000, 0.5), .totalSampleFrames = 100});
    world.addTrack(10, sine(1000, 1)).volumeDB = -280;
    world.addTrack(11, sine(1000, 1)).volumeDB = -300;
    const auto& packet = world.tick();
    EXPECT_THAT(indices(packet), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 0));
    EXPECT_THAT(statuses(packet),
                ElementsAre(Status::activeSignal, Status::silence, Status::silence, Status::silence,
                            Status::unavailable, Status::unavailable, Status::silence, Status::silence,
                            Status::activeSignal, Status::silence, Status::activeSignal));

    // A solo silences the others; that of a master track does not count.
    for (auto& track : world.tracks) track.isSolo = track.isMaster;
    EXPECT_EQ(world.meter(1).status, Status::activeSignal);
    world.tracks[1].isSolo = true;
    EXPECT_THAT(statuses(world.tick()),
                ElementsAre(Status::silence, Status::silence, Status::silence, Status::silence,
                            Status::unavailable, Status::unavailable, Status::silence, Status::silence,
                            Status::silence, Status::silence, Status::silence));
}

TEST(MeterEngine, givesEveryListedTrackADisconnectedMeterWithoutTheEditor) {
    MeterWorld world;
    world.addTrack(1, sine(1000, 1));
    world.addTrack(2, sine(1000, 1));
    world.listTrack(0, true);
    world.selected = 2;
    const auto before = world.tick();
    EXPECT_EQ(before.selectedTrackStatus, Status::activeSignal);
    world.editorRunning = false;
    const auto packet = world.tick();
    EXPECT_EQ(packet.sequence, before.sequence + 1);
    EXPECT_THAT(indices(packet), ElementsAre(1, 2, 0));
    EXPECT_THAT(statuses(packet), Each(Status::disconnected));
    EXPECT_EQ(packet.selectedTrackStatus, Status::disconnected);
    EXPECT_THAT(packet.spectrumBands, ElementsAreArray(std::vector<int>(16, 0)));
    EXPECT_THAT(packet.amplitudeHistory, ElementsAreArray(std::vector<int>(16, 0)));
    for (const auto& meter : packet.channelMeters) EXPECT_EQ(meter.peakHoldDBFS, -288);
    // Ballistics have not moved: the hold is still there.
    world.editorRunning = true;
    world.tracks[0].isMuted = true;
    EXPECT_EQ(world.meter(1).peakHoldDBFS, 0);
}

TEST(MeterEngine, countsPacketsAndTimeInTheirFieldsWidths) {
    MeterWorld world;
    world.now = std::chrono::milliseconds((std::int64_t{7} << 32) + 1234) + std::chrono::microseconds(999);
    const auto first = world.tick();
    EXPECT_EQ(first.sequence, 1);
    EXPECT_EQ(first.timestampMs, 1234U);
    for (int i = 0; i < 65'534; ++i) world.tick();
    EXPECT_EQ(world.tick().sequence, 0);
}

TEST(MeterEngine, keepsAPlaceholdersHoldForItsTimeThenDropsIt) {
    MeterWorld world;
    world.addTrack(1, sine(1500, 1));
    ASSERT_TRUE(world.meter(1).isClipping);
    world.clips.clear();
    // 66 ms a tick: the hold was raised at 0, stands at 18 x 66 = 1188 ms, and is gone at 1254 ms.
    for (int i = 1; i <= 18; ++i) {
        const auto meter = world.meter(1);
        EXPECT_EQ(meter.peakDBFS, -288);
        EXPECT_EQ(meter.peakHoldDBFS, 0) << i;
        EXPECT_TRUE(meter.isClipping);
    }
    EXPECT_EQ(world.meter(1).peakHoldDBFS, -288);
    for (int i = 20; i <= 30; ++i) EXPECT_TRUE(world.meter(1).isClipping) << i;
    EXPECT_FALSE(world.meter(1).isClipping) << "31 x 66 = 2046 ms";
}

TEST(MeterEngine, showsTheSelectedTracksSixteenVideoFramesAroundThePlayhead) {
    MeterWorld world;
    // Video frame n of the media has the level n dB below 0, as a constant.
    const auto staircase = [](std::int64_t frame, int) {
        return static_cast<float>(std::pow(10, -static_cast<double>(frame / 2000) / 20));
    };
    world.addTrack(1, staircase).volumeDB = -2;
    const auto historyFrom = [](int firstFrame, int entries = 16) {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(16 - entries), 0);
        for (int i = 0; i < entries; ++i) bytes.push_back(meterByte(-2 - firstFrame - i));
        return bytes;
    };
    EXPECT_THAT(world.tick().amplitudeHistory, ElementsAreArray(historyFrom(24 - 8)));
    // Near the media's beginning the first entries lie before it.
    world.clips[1].sourceStartFrame = 3;
    EXPECT_THAT(world.tick().amplitudeHistory, ElementsAreArray(historyFrom(0, 11)));
    // 10 s of media are 240 video frames.
    world.clips[1].sourceStartFrame = 236;
    auto end = historyFrom(228, 16);
    std::fill(end.begin() + 12, end.end(), std::uint8_t{0});
    EXPECT_THAT(world.tick().amplitudeHistory, ElementsAreArray(end));
    world.tracks[0].isMuted = true;
    EXPECT_THAT(world.tick().amplitudeHistory, Each(0));
}

TEST(MeterEngine, rollsTheMastersHistoryAndForgetsItWhenAnotherTrackIsSelected) {
    MeterWorld world;
    world.addTrack(1, sine(1500, 0.5));
    world.selected = 0;
    const auto byte = meterByte(inDB(0.5));
    std::vector<std::uint8_t> expected(16, 0);
    for (int i = 0; i < 20; ++i) {
        std::ranges::rotate(expected, expected.begin() + 1);
        expected.back() = byte;
        const auto& packet = world.tick();
        EXPECT_THAT(packet.amplitudeHistory, ElementsAreArray(expected));
        EXPECT_EQ(packet.selectedTrackStatus, Status::activeSignal);
        EXPECT_THAT(packet.spectrumBands, Each(0)) << "the master has no spectrum of its own";
    }
    world.selected = 5;
    const auto& unknown = world.tick();
    EXPECT_THAT(unknown.amplitudeHistory, Each(0));
    EXPECT_EQ(unknown.selectedTrackStatus, Status::silence);
    world.selected = 0;
    EXPECT_EQ(std::ranges::count(world.tick().amplitudeHistory, 0), 15);
}

TEST(MeterEngine, mutesTheMasterAndNotItsTracks) {
    MeterWorld world;
    world.addTrack(1, sine(1500, 0.5));
    world.masterMuted = true;
    world.selected = 0;
    const auto& packet = world.tick();
    EXPECT_THAT(statuses(packet), ElementsAre(Status::activeSignal, Status::silence));
    EXPECT_EQ(packet.selectedTrackStatus, Status::silence);
}

TEST(MeterEngine, decaysTheSpectrumThroughSilenceAndShowsZeros) {
    MeterWorld world;
    world.addTrack(1, sine(1500, 0.4));
    const auto loud = world.tick().spectrumBands;
    const auto band = static_cast<std::size_t>(std::ranges::max_element(loud) - loud.begin());
    world.tracks[0].isMuted = true;
    for (int i = 0; i < 3; ++i) EXPECT_THAT(world.tick().spectrumBands, Each(0));
    // Three steps of 18 dB are what a whisper is then seen to fall from, by 6.5.
    world.tracks[0].isMuted = false;
    world.tracks[0].volumeDB = -200;
    EXPECT_NEAR(dbFromMeterPosition(world.tick().spectrumBands[band] / 255.0),
                dbFromMeterPosition(loud[band] / 255.0) - 3 * 18 - 6.5, 0.5);
}

TEST(MeterEngine, opensEachFileOnceAndForgetsAllWithThe25th) {
    MeterWorld world;
    for (std::int64_t i = 1; i <= 24; ++i) world.addTrack(i, sine(1000, 0.5));
    world.addTrack(25, "/clips/1.wav");
    world.addTrack(26, "/missing.wav");
    world.clips.erase(26);
    for (int i = 0; i < 3; ++i) world.tick();
    EXPECT_EQ(world.media.openings, 24);
    // What could not be opened stays so, although it exists now, until the others are dropped.
    world.clips[1].filePath = "/missing.wav";
    world.clips[25].filePath = "/missing.wav";
    world.tick();
    EXPECT_EQ(world.media.openings, 24 + 1 + 23) << "the 25th dropped the others";
    world.media.sounds["/missing.wav"] = world.media.sounds["/clips/1.wav"];
    world.tick();
    EXPECT_EQ(world.meter(1).status, Status::unavailable);
    world.clips[2].filePath = "/another.wav";
    world.tick();
    EXPECT_EQ(world.meter(1).status, Status::activeSignal);
}

/// Still at work until it is told.
class SlowOpener final : public ClipSourceOpener {
  public:
    explicit SlowOpener(ClipMedia& media) : media_(media) {}
    std::optional<CachedAudioSource> open(const std::string& path) override {
        return isDone ? std::optional(openAudioSource(path, media_)) : std::nullopt;
    }
    bool isDone = false;

  private:
    ClipMedia& media_;
};

TEST(MeterEngine, showsMediaThatAreStillBeingOpenedAsUnavailableUntilTheyAreOpen) {
    MeterWorld world;
    SlowOpener opener(world.media);
    world.engine = std::make_unique<FairlightAudioMeterEngine>(opener);
    world.addTrack(1, sine(1000, 0.5));
    EXPECT_EQ(world.tick().selectedTrackStatus, Status::unavailable);
    opener.isDone = true;
    EXPECT_EQ(world.tick().selectedTrackStatus, Status::activeSignal);
}

TEST(MeterEngine, fallsSilentWhereAFileBreaksOffAndRecovers) {
    MeterWorld world;
    auto sound = std::make_shared<SimulatedSound>(SimulatedSound{.sample = sine(1000, 0.5)});
    world.media.sounds["/a.wav"] = sound;
    world.addTrack(1, "/a.wav");
    EXPECT_EQ(world.meter(1).status, Status::activeSignal);
    sound->readableFrames = 1000;
    EXPECT_EQ(world.meter(1).status, Status::silence);
    sound->readableFrames = INT64_MAX;
    EXPECT_EQ(world.meter(1).status, Status::activeSignal);
}

TEST(MeterEngine, survivesWhatNoEditorSays) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    MeterWorld world;
    world.addTrack(1, sine(1000, 0.5));
    world.addTrack(2, [](std::int64_t frame, int) {
        return frame % 3 == 0 ? std::numeric_limits<float>::quiet_NaN()
                              : std::numeric_limits<float>::infinity();
    });
    world.addTrack(3,
                   SimulatedSound{.sample = sine(1000, 0.5), .sampleRate = 2e9, .totalSampleFrames = most});
    world.selected = 3;
    for (const bool playing : {false, true})
        for (const double fps : {24.0, 0.0, -5.0, 1e-300, 1e300, infinity, nan})
            for (const std::int64_t playhead : {std::int64_t{86'400}, most, least, std::int64_t{0}})
                for (const std::int64_t source : {std::int64_t{0}, most, least})
                    for (const double volume : {0.0, 1e9, -1e9}) {
                        world.isPlaying = playing;
                        world.framesPerSecond = fps;
                        world.playhead = playhead;
                        for (auto& [index, clip] : world.clips) {
                            clip.sourceStartFrame = source;
                            clip.clipStartFrame = source == most ? least : 0;
                        }
                        for (auto& track : world.tracks) track.volumeDB = volume;
                        for (const auto& meter : world.tick().channelMeters)
                            for (const double level : {meter.peakDBFS, meter.rmsDBFS, meter.peakHoldDBFS})
                                EXPECT_TRUE(level >= -288 && level <= 0) << level;
                    }
    // A track of nonsense does not spoil the master.
    MeterWorld mixed;
    mixed.addTrack(1, sine(1500, 0.5));
    mixed.addTrack(2, [](std::int64_t, int) { return std::numeric_limits<float>::infinity(); });
    EXPECT_NEAR(mixed.meter(0).peakDBFS, inDB(0.5), 0.01);
}

}  // namespace
}  // namespace orbinex
