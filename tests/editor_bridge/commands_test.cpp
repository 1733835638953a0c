// What the iPhone's commands do: to the session, to the editor, to the output, and what the iPhone is told.

#include <limits>

#include <gtest/gtest.h>

#include "bridge_world.h"
#include "support/publish_in_test.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;
using Changes = std::function<void(DAWSessionSnapshot&)>;

struct Row {
    const char* command;
    Texts lines;
    const char* packets;
    Changes changes = [](DAWSessionSnapshot&) {};
};

constexpr const char* whole = "H T1 T2 T3 T0 M";

const Row commandRows[] = {
    {"VOL|2|-6", {"VOL|2|-6.00"}, "T2", [](auto& s) { s.tracks[1].volumeDB = -6; }},
    {"VOL|2|40", {"VOL|2|40.00"}, "T2", [](auto& s) { s.tracks[1].volumeDB = 12; }},
    {"VOL|2|nan", {"VOL|2|-96.00"}, "T2", [](auto& s) { s.tracks[1].volumeDB = -96; }},
    {"VOL|-3|1.005", {"VOL|-3|1.00"}, ""},
    {"VOL|0|-6", {}, "T0", [](auto& s) { s.masterVolumeDB = s.tracks[3].volumeDB = -6; }},
    {"VOL|9|-6", {"VOL|9|-6.00"}, ""},
    {"PAN|1|-150", {"PAN|1|-150.0"}, "T1", [](auto& s) { s.tracks[0].pan = -100; }},
    {"PAN|1|nan", {"PAN|1|0.0"}, "T1", [](auto& s) { s.tracks[0].pan = 0; }},
    {"PAN|1|inf", {"PAN|1|100.0"}, "T1", [](auto& s) { s.tracks[0].pan = 100; }},
    {"PAN|0|10", {}, "", [](auto& s) { s.tracks[3].pan = 10; }},
    {"MUTE|3|1", {"MUTE|3|0"}, "T3", [](auto& s) { s.tracks[2].isMuted = true; }},
    {"MUTE|2|0", {"MUTE|2|1"}, "T2"},
    {"MUTE|0|1", {}, "T0", [](auto& s) { s.masterMuted = s.tracks[3].isMuted = true; }},
    {"MUTE|-1|1", {}, ""},
    {"SOLO|2|1", {}, "T2", [](auto& s) { s.tracks[1].isSolo = true; }},
    {"ARM|1|1", {"LOCK|1|1"}, "T1", [](auto& s) { s.tracks[0].isArmed = s.tracks[0].isLocked = true; }},
    {"ARM|1|0", {"LOCK|1|0"}, "T1"},
    {"ARM|-1|1", {}, ""},
    {"ARM|0|1", {}, "T0", [](auto& s) { s.tracks[3].isArmed = s.tracks[3].isLocked = true; }},
    {"VISO|2|1|180",
     {"VISO|2|1|180"},
     "T2",
     [](auto& s) {
         s.tracks[1].voiceIsolationEnabled = true;
         s.tracks[1].voiceIsolationAmount = 100;
     }},
    {"DLEV|2|1|-40",
     {"DLEV|2|1|-40.0"},
     "T2",
     [](auto& s) {
         s.tracks[1].dialogueLevelerEnabled = true;
         s.tracks[1].dialogueLevelerGainDB = -12;
     }},
    {"DLEV|2|1|inf",
     {"DLEV|2|1|12.0"},
     "T2",
     [](auto& s) {
         s.tracks[1].dialogueLevelerEnabled = true;
         s.tracks[1].dialogueLevelerGainDB = 12;
     }},
    {"VISO|0|0|-5", {"VISO|0|0|-5"}, "T0"},
    {"LINK|0", {"LINK|0"}, whole, [](auto& s) { s.clipsLinked = false; }},
    {"CDL|0|0.1|0.2|0.3|1.1|1.2|1.3|0.5|0.9",
     {"CDL|1|0.5500|0.6000|0.6500|0.1000|0.2000|0.3000|1.5000|0.900"},
     whole,
     [](auto& s) {
         s.colorState.liftR = 0.1;
         s.colorState.liftG = 0.2;
         s.colorState.liftB = 0.3;
         s.colorState.gainR = 1.1;
         s.colorState.gainG = 1.2;
         s.colorState.gainB = 1.3;
         s.colorState.contrast = 0.5;
         s.colorState.saturation = 0.9;
     }},
    {"CDL|2|inf|0|0|1|1|1|1|1",
     {"CDL|2|1.0000|1.0000|1.0000|inf|0.0000|0.0000|1.0000|1.000"},
     whole,
     [](auto& s) {
         s.colorState.selectedNodeIndex = 2;
         s.colorState.liftR = std::numeric_limits<double>::infinity();
     }},
    {"NEN|3|0",
     {"NEN|3|0"},
     whole,
     [](auto& s) {
         s.colorState.selectedNodeIndex = 3;
         s.colorState.isNodeEnabled = false;
     }},
    {"CDL|1|0|0|0|1|1|1|-inf|1",
     {"CDL|1|0.1000|0.1000|0.1000|0.0000|0.0000|0.0000|inf|1.000"},
     whole,
     [](auto& s) { s.colorState.contrast = -std::numeric_limits<double>::infinity(); }},
    {"CDL|0|0|0|0|1|1|1|0.05|1",
     {"CDL|1|0.1000|0.1000|0.1000|0.0000|0.0000|0.0000|1.9500|1.000"},
     whole,
     [](auto& s) { s.colorState.contrast = 0.05; }},
    {"CDL|1|0|0|0|1|1|-4|2.5|1",
     {"CDL|1|2.5000|2.5000|0.1000|0.0000|0.0000|0.0000|0.2000|1.000"},
     whole,
     [](auto& s) {
         s.colorState.gainB = -4;
         s.colorState.contrast = 2.5;
     }},
    {"NEN|-2|1", {"NEN|1|1"}, whole},
    {"SEL|2", {}, "M"},
    {"SYNC", {"REFRESH"}, whole},
};

TEST(Commands, changeTheSessionTellTheEditorAndAnswer) {
    for (const auto& row : commandRows) {
        SCOPED_TRACE(row.command);
        BridgeWorld world;
        world.beginSession();
        auto expected = world.session();
        row.changes(expected);
        world.command(row.command);
        EXPECT_EQ(world.session(), expected);
        EXPECT_EQ(world.commandFile.lines, row.lines);
        EXPECT_EQ(world.packetKinds(), row.packets);
        EXPECT_EQ(world.told, std::vector<SessionTelemetry>{});
    }
}

TEST(Commands, doTheSameForOtherEditorsWithoutTheScript) {
    for (const auto& row : commandRows) {
        SCOPED_TRACE(row.command);
        BridgeWorld world;
        world.workspace.activate(logic);
        auto expected = world.session();
        row.changes(expected);
        world.command(row.command);
        EXPECT_EQ(world.session(), expected);
        const bool isRefresh = row.command == std::string("SYNC");
        EXPECT_EQ(world.commandFile.lines, isRefresh ? row.lines : Texts{});
        const bool isOneTrack = row.packets[0] == 'T';
        EXPECT_EQ(world.packetKinds(), isOneTrack ? row.packets : "") << "answers do not ask who listens";
    }
    BridgeWorld world;
    world.workspace.launch(resolve);
    world.workspace.activate(logic);
    world.command("VOL|1|0");
    EXPECT_EQ(world.commandFile.lines, Texts{"VOL|1|0.00"}) << "Resolve runs behind";
}

TEST(Commands, openPagesAndSetTheTimecode) {
    BridgeWorld world;
    world.beginSession();
    world.run(1s);
    world.packets.clear();
    auto expected = *world.daemon->currentTelemetry;
    world.command("PAGE|FaérLight");
    expected.pageName = "FAÉRLIGHT";
    EXPECT_EQ(world.told, std::vector{expected});
    world.command("TC|00:00:02:03");
    expected.timecode = "00:00:02:03";
    EXPECT_EQ(world.told.back(), expected);
    EXPECT_EQ(world.daemon->currentPlayheadFrame(), 51);
    EXPECT_EQ(world.daemon->lastPlayheadUpdateUptime(), world.queue.uptime());
    world.command("TC|somewhere");
    EXPECT_EQ(world.told.back().timecode, "somewhere");
    EXPECT_EQ(world.daemon->currentPlayheadFrame(), 51);
    EXPECT_EQ(world.commandFile.lines, (Texts{"PAGE|faérlight", "TC|00:00:02:03", "TC|somewhere"}));
    EXPECT_EQ(world.packetKinds(), "");
}

TEST(Commands, selectATrack) {
    BridgeWorld world;
    world.daemon->handleCommand({DAWCommand::SelectTrack{5}});
    EXPECT_EQ(world.daemon->selectedTrackIndex(), 5);
    world.daemon->handleCommand({DAWCommand::SelectTrack{-4}});
    EXPECT_EQ(world.daemon->selectedTrackIndex(), 0);
}

TEST(MasterVolume, isTheOutputsVolume) {
    BridgeWorld world;
    world.volume.position = 1;
    world.beginSession();
    EXPECT_EQ(world.session().masterVolumeDB, 12);
    world.command("VOL|0|-6");
    ASSERT_EQ(world.volume.writes.size(), 1U);
    EXPECT_NEAR(world.volume.writes[0], 0.6967, 5e-5);
    world.forget();
    world.run(10s);
    EXPECT_EQ(world.session().masterVolumeDB, -6) << "read back, it is the same";
    world.packets.clear();
    world.volume.position = 0.78;
    world.run(2500ms);
    EXPECT_EQ(world.session().masterVolumeDB, 0);
    EXPECT_EQ(std::get<DAWTrackState>(world.packets.back().value).volumeDB, 0)
        << "just before the next meters";
    world.forget();
    world.volume.position = 0.784;
    world.run(2500ms);
    EXPECT_EQ(world.session().masterVolumeDB, 0) << "within a quarter of a dB";
    for (const auto& [command, position] :
         {std::pair{"VOL|0|99", 1.0}, {"VOL|0|-99", 0.0}, {"VOL|0|nan", 0.0}}) {
        world.command(command);
        EXPECT_EQ(world.volume.writes.back(), position) << command;
    }
    world.volume.position.reset();
    world.command("VOL|0|-20");
    world.run(10s);
    EXPECT_EQ(world.session().masterVolumeDB, -20) << "without an output it is a number";
}

TEST(MasterVolume, needsNoMasterTrack) {
    BridgeWorld world;
    world.volume.position = 0.28;
    PublishInTest::edit(world.daemon->dawSnapshot,
                        [](DAWSessionSnapshot& session) { session.tracks.clear(); });
    world.daemon->setBLEClientConnected(true);
    EXPECT_EQ(world.session().masterVolumeDB, -36);
    world.packets.clear();
    world.command("VOL|0|-6");
    EXPECT_EQ(world.packetKinds(), "");
    EXPECT_EQ(world.session().masterVolumeDB, -6);
}

}  // namespace
}  // namespace orbinex
