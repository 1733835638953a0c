#include "editor_bridge/linux/pulse_volume.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sim/virtual_main_queue.h"
#include "support/private_sound_server.h"

/// The library shares a mutex that it has just made by an atomic pointer, which the thread sanitizer cannot
/// see from outside. Named as narrowly as this, nothing of ours is overlooked.
extern "C" const char* __tsan_default_suppressions() {
    return "race:pa_mutex_lock\nrace:pa_mutex_unlock\n";
}

namespace orbinex::test {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr pa_volume_t full = PA_VOLUME_NORM;

SinkVolume stereo(pa_volume_t left, pa_volume_t right, std::uint32_t sink = 0) {
    SinkVolume volume{.sink = sink, .channels = {}};
    pa_cvolume_set(&volume.channels, 2, left);
    volume.channels.values[1] = right;
    return volume;
}

TEST(SinkPosition, isTheLoudestChannelWithinItsLimits) {
    EXPECT_EQ(positionOf(stereo(full / 4, full / 2).channels), 0.5);
    EXPECT_EQ(positionOf(stereo(0, 0).channels), 0.0);
    EXPECT_EQ(positionOf(stereo(full, full * 3 / 2).channels), 1.0) << "amplified";
    EXPECT_EQ(positionOf(pa_cvolume{}), 0.0) << "no channels";
}

TEST(SinkBalance, comesBackFromSilence) {
    SinkBalance balance;
    balance.learn(stereo(full / 4, full / 2));
    for (const double position : {0.00002, 0.0}) balance.learn(balance.set(position));
    balance.learn(stereo(0, 0));  // somebody else's silence
    const auto loud = balance.set(1.0);
    EXPECT_EQ(loud.channels.values[0], full / 2);
    EXPECT_EQ(loud.channels.values[1], full);
}

TEST(SinkBalance, isLearnedAnewFromOthersAndForEachSink) {
    SinkBalance balance;
    balance.learn(stereo(full / 4, full / 2));
    (void)balance.set(0.1);
    balance.learn(stereo(full, full / 2));
    EXPECT_EQ(balance.set(0.5).channels.values[1], full / 4);
    balance.learn(stereo(0, 0, 1));
    const auto other = balance.set(0.5);
    EXPECT_EQ(other.sink, 1U);
    EXPECT_EQ(other.channels.values[0], full / 2);
    EXPECT_EQ(other.channels.values[1], full / 2);
}

/// A volume on a sound server of its own. The servers' time is real, ours is not.
class PulseVolumeTest : public testing::Test {
  protected:
    /// Lets things happen until the condition holds; false when it does not within a generous time.
    bool waitUntil(const std::function<bool()>& condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            std::this_thread::sleep_for(milliseconds(1));
            queue.advance(milliseconds(20));
        }
        return true;
    }
    /// Until the volume reads so, within the rounding of the server.
    bool waitFor(std::optional<double> position) {
        return waitUntil([&] {
            const auto now = volume.read();
            return position && now ? std::abs(*now - *position) < 0.0001 : position == now;
        });
    }
    /// Until the server has a sink's channels so, as pactl prints them.
    bool waitForServer(const std::string& sink, const std::string& channels) {
        return waitUntil(
            [&] { return server.pactl("get-sink-volume " + sink).find(channels) != std::string::npos; });
    }
    void pactl(const std::string& arguments) const { (void)server.pactl(arguments); }

    PrivateSoundServer server;
    VirtualMainQueue queue;
    PulseVolume volume{queue, server.address()};
};

TEST_F(PulseVolumeTest, readsWhatMixersShowAndFollowsThem) {
    server.start();
    EXPECT_EQ(volume.read(), std::nullopt) << "nothing is known before the server has told it";
    EXPECT_TRUE(waitFor(1.0));
    pactl("set-sink-volume first 25%");
    EXPECT_TRUE(waitFor(0.25));
    pactl("set-sink-volume first 30% 60%");
    EXPECT_TRUE(waitFor(0.6));
    pactl("set-sink-volume second 10%");
    pactl("set-sink-volume first 70%");
    EXPECT_TRUE(waitFor(0.7));
}

TEST_F(PulseVolumeTest, writesWithTheBalanceKept) {
    server.start();
    ASSERT_TRUE(waitFor(1.0));
    pactl("set-sink-volume first 30% 60%");
    ASSERT_TRUE(waitFor(0.6));
    const struct {
        double written;
        double read;
        const char* left;
        const char* right;
    } rows[] = {
        {0.4, 0.4, " 20%", " 40%"}, {0.0, 0.0, " 0%", " 0%"},   {7.0, 1.0, " 50%", "100%"},
        {-1.0, 0.0, " 0%", " 0%"},  {0.5, 0.5, " 25%", " 50%"},
    };
    for (const auto& row : rows) {
        volume.write(row.written);
        EXPECT_EQ(volume.read(), row.read) << "at once";
        EXPECT_TRUE(waitForServer("first", row.left)) << row.written;
        EXPECT_TRUE(waitForServer("first", row.right)) << row.written;
    }
    volume.write(std::nan(""));
    EXPECT_EQ(volume.read(), 0.5);
}

TEST_F(PulseVolumeTest, doesNotJumpBackWhileAFaderIsDragged) {
    server.start();
    ASSERT_TRUE(waitFor(1.0));
    constexpr int steps = 200;
    for (int step = 1; step <= steps; ++step) {
        const double position = 0.8 * step / steps;
        volume.write(position);
        constexpr int turns = 4;
        for (int turn = 0; turn < turns; ++turn) {
            std::this_thread::sleep_for(milliseconds(1));
            queue.advance(milliseconds(1));
            ASSERT_EQ(volume.read(), position) << "step " << step;
        }
    }
    EXPECT_TRUE(waitForServer("first", " 80%"));
    // Others are heard again afterwards.
    pactl("set-sink-volume first 35%");
    EXPECT_TRUE(waitFor(0.35));
}

TEST_F(PulseVolumeTest, followsTheDefaultSink) {
    server.start();
    pactl("set-sink-volume second 40%");
    ASSERT_TRUE(waitFor(1.0));
    pactl("set-default-sink second");
    ASSERT_TRUE(waitFor(0.4));
    volume.write(0.2);
    EXPECT_TRUE(waitForServer("second", " 20%"));
    EXPECT_THAT(server.pactl("get-sink-volume first"), HasSubstr("100%"));

    // What is removed leaves the other one as the default, and then none.
    pactl("unload-module module-null-sink");
    ASSERT_TRUE(waitFor(std::nullopt));
    volume.write(0.9);
    EXPECT_EQ(volume.read(), std::nullopt);
    pactl("load-module module-null-sink sink_name=third");
    EXPECT_TRUE(waitFor(1.0)) << "what was written without an output is forgotten";
}

TEST_F(PulseVolumeTest, outlivesItsServer) {
    EXPECT_TRUE(waitUntil([this] { return queue.pendingTimers() > 0; })) << "it tries again";
    for (const bool isWriting : {false, true}) {
        server.start();
        ASSERT_TRUE(waitFor(1.0));
        if (isWriting) {
            for (const double position : {0.1, 0.2}) volume.write(position);
        }
        server.kill();
        ASSERT_TRUE(waitFor(std::nullopt));
        volume.write(0.5);
    }
}

TEST_F(PulseVolumeTest, endsInTheMiddleOfEverything) {
    server.start();
    for (int round = 0; round < 20; ++round) {
        PulseVolume brief(queue, server.address());
        if (round % 2 == 0) continue;
        EXPECT_TRUE(waitUntil([&] { return brief.read().has_value(); }));
        brief.write(0.5);
    }
    queue.runDue();
}

}  // namespace
}  // namespace orbinex::test
