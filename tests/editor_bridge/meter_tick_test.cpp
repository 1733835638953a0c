// From what the script prints and the iPhone asks for to the meters that it gets.

#include <cmath>

#include <gmock/gmock.h>

#include "bridge_world.h"
#include "protocol/meter_scale.h"
#include "support/allocation_counter.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Status = TrackMeterStatus;

/// A world with an editor of two tracks whose clips begin at 01:00:00:00, 24 frames a second. The media's
/// level falls by a dB every second (24 frames), so that a level tells a place.
class MeterTick : public testing::Test {
  protected:
    MeterTick() {
        const auto falling = [](std::int64_t frame, int) {
            return static_cast<float>(std::pow(10, -static_cast<double>(frame) / 48'000 / 20));
        };
        world.media.sounds["/media/take.wav"] = std::make_shared<SimulatedSound>(
            SimulatedSound{.sample = falling, .totalSampleFrames = 48'000'000});
        world.beginSession();
        world.print("OXHDR|2|1|Shot|1\n" + track(1, "/media/take.wav") + track(2, "/media/gone.wav"));
    }
    static std::string track(int index, const std::string& path) {
        const auto number = std::to_string(index);
        return "OXTRK|" + number + "|2|Name|Take|stereo|1|0|0.00|0.0|0|0|0|0.0|1|" + number +
               "_86400|86400|0|" + path + "\n";
    }
    void report(const std::string& timecode) {
        world.print("OXTC|" + timecode + "|24|RESOLVE 19.1|Cut|edit|1|" +
                    std::to_string(86'400 + std::stoi(timecode.substr(6, 2)) * 24 +
                                   std::stoi(timecode.substr(9, 2))) +
                    "\n");
    }
    /// The next packet that the iPhone gets.
    DAWMeterPacket next() {
        world.forget();
        world.run(66ms);
        return std::get<DAWMeterPacket>(world.packets.back().value);
    }
    static double dB(double level) { return dbFromMeterPosition(meterByte(level) / 255.0); }

    BridgeWorld world;
};

TEST_F(MeterTick, measuresTheClipUnderThePlayhead) {
    report("01:00:10:00");
    const auto packet = next();
    ASSERT_EQ(packet.channelMeters.size(), 3U);
    EXPECT_EQ(packet.channelMeters[0].status, Status::activeSignal);
    EXPECT_NEAR(packet.channelMeters[0].peakDBFS, dB(-10), 0.2);
    EXPECT_EQ(packet.channelMeters[1].status, Status::unavailable);
    EXPECT_NEAR(packet.channelMeters[2].peakDBFS, dB(-10), 0.2);
    EXPECT_EQ(packet.selectedTrackIndex, 1);
    EXPECT_THAT(packet.spectrumBands, testing::SizeIs(16));
    EXPECT_EQ(packet.sequence, world.daemon->latestMeterPacket->sequence);
}

TEST_F(MeterTick, followsThePlayheadBetweenItsReports) {
    report("01:00:10:00");
    world.run(40ms);
    report("01:00:10:01");
    ASSERT_TRUE(world.daemon->currentTelemetry->isPlaying);
    // The playhead is read, not the meter, whose fall is slow: rising levels show at once.
    world.command("SYNC");
    const double before = world.daemon->latestMeterPacket->channelMeters[0].peakDBFS;
    world.run(100ms);
    report("01:00:02:00");
    world.command("SYNC");
    EXPECT_NEAR(before, -10 - 1.0 / 24, 0.01);
    EXPECT_NEAR(world.daemon->latestMeterPacket->channelMeters[0].peakDBFS, -2, 0.01);
}

TEST_F(MeterTick, obeysTheFadersAndTheSelectionAtOnce) {
    report("01:00:10:00");
    world.command("MUTE|1|1");
    EXPECT_EQ(next().channelMeters[0].status, Status::silence);
    world.command("MUTE|1|0");
    world.command("VOL|1|6");
    EXPECT_NEAR(next().channelMeters[0].peakDBFS, dB(-4), 0.2);
    world.forget();
    world.command("SEL|2");
    ASSERT_EQ(world.packetKinds(), "M");
    const auto packet = std::get<DAWMeterPacket>(world.packets[0].value);
    EXPECT_EQ(packet.selectedTrackIndex, 2);
    EXPECT_EQ(packet.selectedTrackStatus, Status::unavailable);
}

TEST_F(MeterTick, goesOnWithoutAnIPhoneAndWithoutAnEditor) {
    const auto before = world.daemon->latestMeterPacket->sequence;
    world.daemon->setBLEClientConnected(false);
    world.forget();
    world.run(660ms);
    EXPECT_TRUE(world.packets.empty());
    EXPECT_EQ(world.daemon->latestMeterPacket->sequence, before + 10);
    world.workspace.terminate(resolve);
    world.run(66ms);
    EXPECT_EQ(world.daemon->latestMeterPacket->channelMeters[0].status, Status::disconnected);
}

TEST_F(MeterTick, allocatesNothingOnceItRunsSteadily) {
    report("01:00:10:00");
    world.daemon->onDAWPacketReady = [](ByteView) {};
    world.run(1s);
    // But for what the virtual queue itself does for a repeating timer.
    VirtualMainQueue queue;
    const auto timer = queue.every(AppWatcherDaemon::meterInterval, [] {});
    EXPECT_EQ(test::allocationsDuring([&] { world.run(660ms); }),
              test::allocationsDuring([&] { queue.advance(660ms); }));
}

}  // namespace
}  // namespace orbinex
