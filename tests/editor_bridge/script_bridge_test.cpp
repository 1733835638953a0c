// What the script prints, and what becomes of the session.

#include <gtest/gtest.h>

#include "bridge_world.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Indices = std::vector<std::int64_t>;

std::string trackLine(std::int64_t index, const std::string& name = "Dialogue",
                      const char* volume = "-6.50") {
    const auto number = std::to_string(index);
    return "OXTRK|" + number + "|3|" + name + "|Take " + number + "|mono|0|1|" + volume +
           "|-12.0|1|80|1|2.5|1|" + number + "_86400|86400|48|/media/take.wav\n";
}

DAWTrackState trackState(std::int64_t index) {
    const auto number = std::to_string(index);
    return {.index = index,
            .totalTracks = std::max<std::int64_t>(index, 3),
            .badge = "A" + number,
            .name = "Dialogue",
            .clipName = "Take " + number,
            .format = "MONO",
            .volumeDB = -6.5,
            .pan = -12,
            .isMuted = true,
            .isLocked = true,
            .voiceIsolationEnabled = true,
            .voiceIsolationAmount = 80,
            .dialogueLevelerEnabled = true,
            .dialogueLevelerGainDB = 2.5,
            .controlMode = DAWControlMode::liveIPC,
            .hasActiveClip = true,
            .clipUID = number + "_86400"};
}

TEST(ScriptBridge, takesTheTracksOverAndPassesThemOn) {
    BridgeWorld world;
    world.beginSession();
    world.print("OXHDR|3|0|Shot 12|5\n" + trackLine(1) + trackLine(2));
    EXPECT_EQ(world.packetKinds(), "H T1 T2");
    EXPECT_EQ(world.packets[2], ControlMessage{trackState(2)});
    EXPECT_EQ(world.session().tracks[1], trackState(2));
    EXPECT_EQ(world.session().colorState.clipName, "Shot 12");
    EXPECT_EQ(world.session().colorState.nodeCount, 5);
    EXPECT_FALSE(world.session().clipsLinked);
    EXPECT_EQ(world.daemon->trackClipMetaByIndex().at(2),
              (ResolveTrackClipMeta{2, true, "2_86400", 86'400, 48, "/media/take.wav"}));
    world.forget();
    world.print(trackLine(2));
    EXPECT_EQ(world.packetKinds(), "T2") << "told again, it is sent again";
    world.print("OXTRK|2|3||Empty||1|0|0.00|0.0|0|65|0|0.0\n");
    EXPECT_EQ(world.session().tracks[1].name, "Audio 2");
    EXPECT_EQ(world.daemon->trackClipMetaByIndex().at(2), (ResolveTrackClipMeta{.trackIndex = 2}));
}

TEST(ScriptBridge, keepsTheTracksInOrderAndTheMasterLast) {
    BridgeWorld world;
    world.beginSession();
    for (const int index : {7, 5, 6, 2}) world.print(trackLine(index));
    EXPECT_EQ(world.trackIndices(), (Indices{1, 2, 3, 5, 6, 7, 0}));
    world.print("OXHDR|5|1|a|1\n");
    EXPECT_EQ(world.trackIndices(), (Indices{1, 2, 3, 5, 0}));
    world.print("OXHDR|-1|1|a|1\n");
    EXPECT_EQ(world.trackIndices(), (Indices{1, 0}));
}

TEST(ScriptBridge, keepsWhatTheScriptCannotKnow) {
    BridgeWorld world;
    world.beginSession();
    world.command("SOLO|2|1");
    world.command("ARM|3|1");
    world.print(trackLine(2) + trackLine(3));
    EXPECT_TRUE(world.session().tracks[1].isSolo);
    EXPECT_TRUE(world.session().tracks[2].isArmed);
    world.print("OXHDR|1|1|a|1\n" + trackLine(2));
    EXPECT_FALSE(world.session().tracks[1].isSolo) << "a track that was gone in between";
}

TEST(ScriptBridge, recognisesResolveByItsHeaderOnly) {
    BridgeWorld world;
    world.workspace.launch(resolve);
    world.workspace.activate(logic);
    world.print("OXTC|01:00:00:00|24|R|Reel 1|edit|0|1\n" + trackLine(1));
    EXPECT_EQ(world.session().dawID, "com.apple.logic10");
    EXPECT_EQ(world.session().projectName, "Reel 1");
    EXPECT_FALSE(world.session().clipsLinked);
    world.print("OXHDR|1|1|a|1\n");
    EXPECT_EQ(world.session().dawID, resolveBundleID);
}

TEST(ScriptBridge, forgetsAnUnfinishedLineWithTheProcessThatBeganIt) {
    BridgeWorld world;
    world.beginSession();
    world.print("OXHDR|1|1|Half");
    world.workspace.terminate(resolve);
    world.workspace.activate(resolve);
    world.print("|2\n" + trackLine(1));
    EXPECT_EQ(world.session().colorState.clipName, "Active Clip");
    EXPECT_EQ(world.session().tracks[0], trackState(1));
    world.print("OXHDR|1|1|Whole");
    world.print("|7\n");
    EXPECT_EQ(world.session().colorState.nodeCount, 7);
}

TEST(ScriptBridge, mayBeStoppedByWhoeverItTells) {
    BridgeWorld world;
    world.beginSession();
    world.daemon->onDAWPacketReady = [&](ByteView) { world.workspace.terminate(resolve); };
    world.print(trackLine(1) + trackLine(2, "Never") + "OXHDR|1|1|ne");
    EXPECT_FALSE(world.host.isRunning());
    EXPECT_EQ(world.session().tracks[0], trackState(1));
    EXPECT_EQ(world.session().tracks[1].name, "Audio 2") << "the rest of what it printed is void";
}

TEST(ScriptBridge, withstandsTenThousandTracksAndMore) {
    BridgeWorld world;
    world.beginSession();
    world.daemon->onDAWPacketReady = nullptr;
    for (int index = 1; index <= 10'000; ++index) world.print(trackLine(index));
    EXPECT_EQ(world.session().tracks.size(), 10'001U);
    EXPECT_EQ(world.session().tracks.back().name, "MASTER");
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 10'000; ++i) world.print(trackLine(1'000'000 * (round + 1) + i));
        world.print("OXHDR|3|1|a|1\n");
    }
    EXPECT_EQ(world.daemon->trackClipMetaByIndex().size(), AppWatcherDaemon::mostTracks);
    EXPECT_EQ(world.trackIndices(), (Indices{1, 2, 3, 0}));
    world.print(trackLine(2, "Still known"));
    EXPECT_EQ(world.session().tracks[1].name, "Still known");
}

}  // namespace
}  // namespace orbinex
