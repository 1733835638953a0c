// What the iPhone is told of the transport, from lists of what the editor reports and when.

#include <gtest/gtest.h>

#include "bridge_world.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

std::string timecodeLine(const std::string& timecode, const char* rate = "24", const char* frame = "0") {
    return "OXTC|" + timecode + "|" + rate + "|RESOLVE 19.1|Cut 3|edit|1|" + frame + "\n";
}

/// What is reported or pressed at a moment, and the label and play state right after it.
struct Event {
    std::chrono::milliseconds at;
    /// A timecode; "key 37" for a key; empty for nothing.
    const char* what;
    const char* label;
};

TEST(Telemetry, tellsThePlayStateFromTheReports) {
    const struct {
        const char* what;
        const char* rate;
        std::vector<Event> events;
    } stories[] = {
        {"plays from the second step on, and stands when no more come",
         "24",
         {{1000ms, "01:00:10:00", "0X"},
          {1033ms, "01:00:10:01", "1X"},
          {1066ms, "01:00:10:03", "+2X"},
          {1108ms, "01:00:10:04", "1X"},
          {1287ms, "", "1X"},
          {1288ms, "", "0X"}}},
        {"a click on the timeline is no playback",
         "24",
         {{1000ms, "01:00:10:00", "0X"}, {1300ms, "01:00:20:00", "0X"}, {1600ms, "01:00:05:00", "0X"}}},
        {"backward",
         "25",
         {{1000ms, "01:00:10:00", "0X"}, {1040ms, "01:00:09:24", "-1X"}, {1080ms, "01:00:09:20", "-2X"}}},
        {"the same report again ends nothing and keeps nothing going",
         "25",
         {{1000ms, "01:00:10:00", "0X"},
          {1040ms, "01:00:10:01", "1X"},
          {1200ms, "01:00:10:01", "1X"},
          {1219ms, "01:00:10:01", "1X"},
          {1220ms, "", "0X"}}},
        {"a timecode that cannot be read leaves the speed",
         "25",
         {{1000ms, "01:00:10:00", "0X"},
          {1040ms, "01:00:10:01", "1X"},
          {1080ms, "no timecode", "1X"},
          {1120ms, "01:00:10:03", "1X"},
          {1220ms, "", "0X"}}},
        {"drop frame at 59.94",
         "59.94 DF",
         {{1000ms, "01:00:59;59", "0X"}, {1017ms, "01:01:00;04", "+2X"}, {1034ms, "01:01:00;05", "1X"}}},
        {"keys tell before the editor does",
         "24",
         {{1000ms, "01:00:10:00", "0X"},
          {2000ms, "key 37", "1X"},
          {2010ms, "key 37", "+2X"},
          {2020ms, "key 37", "1X"},
          {2030ms, "key 38", "-1X"},
          {2040ms, "key 37", "1X"},
          {2050ms, "key 49", "0X"},
          {2060ms, "key 49", "1X"},
          {2070ms, "key 40", "0X"},
          {2080ms, "key 0", "0X"}}},
        {"what a key began, only a report that stops coming ends",
         "24",
         {{1000ms, "01:00:10:00", "0X"},
          {2000ms, "key 37", "1X"},
          {9000ms, "", "1X"},
          {9001ms, "01:00:10:01", "1X"},
          {9180ms, "", "1X"},
          {9181ms, "", "0X"}}},
    };
    for (const auto& story : stories) {
        SCOPED_TRACE(story.what);
        BridgeWorld world;
        world.beginSession();
        const auto start = world.queue.uptime();
        for (const auto& event : story.events) {
            world.run(start + event.at - world.queue.uptime());
            const std::string_view what = event.what;
            if (what.starts_with("key ")) {
                world.daemon->handleTransportKey(static_cast<std::uint16_t>(std::stoi(event.what + 4)), {});
            } else if (!what.empty()) {
                world.print(timecodeLine(event.what, story.rate));
            }
            EXPECT_EQ(world.daemon->currentTelemetry->playbackSpeed, event.label)
                << what << " at " << event.at.count() << " ms";
            EXPECT_EQ(world.daemon->currentTelemetry->isPlaying, event.label != std::string_view("0X"));
        }
    }
}

TEST(Telemetry, isToldOnceAndOnlyWhenItHasChanged) {
    BridgeWorld world;
    world.beginSession();
    world.run(1s);
    world.print(timecodeLine("01:00:10:00", "29.97 DF"));
    const SessionTelemetry first{"01:00:10:00", 29.97, "RESOLVE 19.1", "Cut 3", "EDIT", "0X", false};
    EXPECT_EQ(world.told, std::vector{first});
    world.print(timecodeLine("01:00:10:00", "29.97"));
    EXPECT_EQ(world.told.size(), 1U);
    world.run(33ms);
    world.print(timecodeLine("01:00:10:01", "29.97"));
    world.run(1s);
    auto playing = first;
    playing.timecode = "01:00:10:01";
    playing.playbackSpeed = "1X";
    playing.isPlaying = true;
    auto standing = playing;
    standing.playbackSpeed = "0X";
    standing.isPlaying = false;
    EXPECT_EQ(world.told, (std::vector{first, playing, standing}));
    world.packets.clear();
    world.print(timecodeLine("01:00:10:01", "29.97"));
    EXPECT_EQ(world.told.size(), 3U);
    EXPECT_EQ(world.packetKinds(), "");
    world.print(
        "OXTC|01:00:10:01|29.97|RESOLVE 19.1|Cut 3|édition|1|0\nOXTRK|1|3|A|Take|stéréo|1|0|0|0|0|65|0|0\n");
    EXPECT_EQ(world.told.back().pageName, "ÉDITION");
    EXPECT_EQ(world.session().tracks[0].format, "STÉRÉO");
}

TEST(Telemetry, keepsThePlayhead) {
    BridgeWorld world;
    world.beginSession();
    EXPECT_EQ(world.daemon->currentPlayheadFrame(), 86'400);
    const struct {
        std::string line;
        std::int64_t frame;
    } rows[] = {
        {timecodeLine("01:00:00:00", "24", "12345"), 12'345},
        {timecodeLine("01:00:00:00", "24", "0"), 86'400},
        {timecodeLine("01:00:00;02", "29.97 DF", "-7"), 108'002},
        {timecodeLine("nonsense", "24", "77"), 77},
        {timecodeLine("nonsense", "24", "x"), 77},
        {"OXTC|00:00:01:00|25|a|b|c\n", 25},
    };
    for (const auto& row : rows) {
        world.run(10ms);
        const auto before = world.daemon->lastPlayheadUpdateUptime();
        const auto frameBefore = world.daemon->currentPlayheadFrame();
        world.print(row.line);
        EXPECT_EQ(world.daemon->currentPlayheadFrame(), row.frame) << row.line;
        const bool isSet = row.frame != frameBefore;
        EXPECT_EQ(world.daemon->lastPlayheadUpdateUptime(), isSet ? world.queue.uptime() : before)
            << row.line;
    }
}

TEST(TransportKeys, stepFrameByFrame) {
    const struct {
        const char* timecode;
        const char* rate;
        std::uint16_t key;
        const char* expected;
    } rows[] = {
        {"01:00:00:00", "24", 123, "00:59:59:23"},
        {"01:00:00:23", "24", 124, "01:00:01:00"},
        {"00:00:00:00", "24", 123, "00:00:00:00"},
        {"01:00:59;29", "29.97 DF", 124, "01:01:00;00"},
        {"no timecode", "24", 124, "no timecode"},
        {"0:0:384307168202282325:7", "24", 124, "0:0:384307168202282325:7"},
    };
    for (const auto& row : rows) {
        BridgeWorld world;
        world.beginSession();
        world.print(timecodeLine(row.timecode, row.rate, "100"));
        world.daemon->handleTransportKey(37, {});
        world.run(10ms);
        world.daemon->handleTransportKey(row.key, {});
        EXPECT_EQ(world.daemon->currentTelemetry->timecode, row.expected);
        EXPECT_EQ(world.daemon->currentTelemetry->playbackSpeed, "0X");
        EXPECT_EQ(world.daemon->currentPlayheadFrame(), row.key == 123 ? 99 : 101);
        EXPECT_EQ(world.daemon->lastPlayheadUpdateUptime(), world.queue.uptime());
    }
}

TEST(TransportKeys, stayWithinTheTimeline) {
    BridgeWorld world;
    world.beginSession();
    world.command("TC|00:00:00:00");
    world.daemon->handleTransportKey(123, {});
    EXPECT_EQ(world.daemon->currentPlayheadFrame(), 0);
    world.print(timecodeLine("00:00:00:00", "24", "9223372036854775807"));
    world.daemon->handleTransportKey(124, {});
    EXPECT_EQ(world.daemon->currentPlayheadFrame(), 9'223'372'036'854'775'807);
}

TEST(TransportKeys, areNoneWithAModifier) {
    BridgeWorld world;
    for (int bit = 0; bit < 8; ++bit) {
        world.daemon->handleTransportKey(49, ModifierFlags{static_cast<std::uint8_t>(1U << bit)});
    }
    world.daemon->handleTransportKey(40, {});
    EXPECT_EQ(world.told, std::vector<SessionTelemetry>{}) << "and one that changes nothing tells nothing";
    world.daemon->handleTransportKey(49, {});
    EXPECT_EQ(world.told.size(), 1U);
}

}  // namespace
}  // namespace orbinex
