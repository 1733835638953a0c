// The applications of the desktop, and what their coming and going does to the session and the script.

#include <gtest/gtest.h>

#include "bridge_world.h"
#include "editor_bridge/bridge_script.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

TEST(Watcher, tellsOfTheApplicationInFront) {
    BridgeWorld world;
    world.run(5s);
    EXPECT_EQ(world.activeApps, Texts{}) << "while none is in front";
    world.workspace.activate(terminal);
    world.workspace.activate(terminal);
    world.workspace.activate({"org.example.terminal", "Another name"});
    EXPECT_EQ(world.activeApps, Texts{"org.example.terminal"}) << "not twice";
    EXPECT_EQ(*world.daemon->activeAppName, "Terminal");
    world.workspace.activate({"", "Nameless"});
    EXPECT_EQ(world.activeApps.back(), "");
    EXPECT_EQ(*world.daemon->activeBundleID, "");
    world.daemon->refreshCurrentApp();
    EXPECT_EQ(world.activeApps.size(), 3U) << "also when nothing has changed";
}

TEST(Watcher, knowsTheApplicationInFrontFromTheStart) {
    BridgeWorld world;
    world.workspace.activate(resolve);
    world.start();
    EXPECT_EQ(*world.daemon->activeBundleID, resolveBundleID);
    EXPECT_TRUE(world.host.isRunning());
}

TEST(Watcher, servesTheEditorThatItRecognises) {
    BridgeWorld world;
    world.daemon->setBLEClientConnected(true);
    world.forget();
    world.workspace.activate({"com.apple.FinalCutTrial", "Final Cut"});
    EXPECT_EQ(world.session().dawID, "com.apple.FinalCut");
    EXPECT_EQ(world.packetKinds(), "H T1 T2 T3 T0 M");
    world.forget();
    world.workspace.activate(terminal);
    EXPECT_EQ(world.session().dawID, "com.apple.FinalCut") << "an unknown one changes nothing";
    world.workspace.launch(resolve);
    EXPECT_EQ(world.session().dawID, "com.apple.FinalCut") << "not in front yet";
    world.workspace.activate({"org.example.other", "Other"});
    EXPECT_EQ(world.session().dawID, resolveBundleID) << "Resolve runs behind an unknown application";
    EXPECT_EQ(world.packetKinds(), "") << "which is no reason to send anything";
    world.workspace.activate(logic);
    EXPECT_EQ(world.session().dawID, "com.apple.logic10");
}

TEST(Watcher, tellsTheNameOfAnEditorThatAnIPhoneMayNotKnow) {
    BridgeWorld world;
    const auto label = [&] { return world.told.empty() ? "" : world.told.back().appVersion; };
    world.workspace.activate(logic);
    EXPECT_EQ(world.told, std::vector<SessionTelemetry>{}) << "it knows this one";
    world.workspace.activate({"org.ardour.Ardour", "Session - Ardour"});
    EXPECT_EQ(label(), "Ardour");
    EXPECT_EQ(world.session().dawID, "org.ardour.Ardour");
    world.workspace.activate(terminal);
    EXPECT_EQ(world.told.size(), 1U) << "it is still the editor";
    world.workspace.activate(logic);
    EXPECT_EQ(label(), "RESOLVE");
    world.workspace.launch(resolve);
    world.print("OXTC|01:00:00:00|24|RESOLVE 19.1|Cut 3|edit\n");
    world.workspace.activate({"org.ardour.Ardour", "Ardour"});
    EXPECT_EQ(label(), "Ardour");
    world.print("OXHDR|1|1|Shot|2\n");
    EXPECT_EQ(world.session().dawID, resolveBundleID);
    EXPECT_EQ(label(), "RESOLVE 19.1");
}

TEST(Watcher, runsTheScriptWhileResolveRuns) {
    BridgeWorld world;
    world.run(10s);
    EXPECT_FALSE(world.host.isRunning());
    world.workspace.launch(logic);
    EXPECT_FALSE(world.host.isRunning());
    world.workspace.launch({"", "DaVinci Resolve Studio"});
    EXPECT_TRUE(world.host.isRunning()) << "known by its name";
    ASSERT_EQ(world.host.scripts.size(), 1U);
    EXPECT_EQ(world.host.scripts[0], bridgeScript(world.commandFile.path()));
    world.workspace.terminate(logic);
    EXPECT_TRUE(world.host.isRunning());
    world.workspace.terminate({"", "DaVinci Resolve Studio"});
    EXPECT_TRUE(world.host.isRunning()) << "its end is told by the identifier alone";
    world.run(2500ms);
    EXPECT_FALSE(world.host.isRunning());
    EXPECT_EQ(world.host.terminated, 1);
    world.workspace.launch(resolve);
    EXPECT_TRUE(world.host.isRunning());
    world.workspace.terminate({"COM.blackmagic-design.DaVinciResolve", "DaVinci Resolve"});
    EXPECT_FALSE(world.host.isRunning()) << "at once";
}

TEST(Watcher, startsTheScriptAgainWhenItEnds) {
    const struct {
        const char* what;
        void (*event)(BridgeWorld&);
    } rows[] = {
        {"the supervisor's next look", [](BridgeWorld& world) { world.run(2500ms); }},
        {"any launch", [](BridgeWorld& world) { world.workspace.launch(terminal); }},
        {"any activation", [](BridgeWorld& world) { world.workspace.activate(terminal); }},
        {"the same again", [](BridgeWorld& world) { world.workspace.activate(resolve); }},
        {"a connection", [](BridgeWorld& world) { world.daemon->setBLEClientConnected(true); }},
    };
    for (const auto& row : rows) {
        BridgeWorld world;
        world.workspace.activate(resolve);
        world.host.exit();
        EXPECT_FALSE(world.daemon->isBridgeRunning());
        row.event(world);
        EXPECT_TRUE(world.host.isRunning()) << row.what;
        EXPECT_EQ(world.host.scripts.size(), 2U) << row.what;
        row.event(world);
        EXPECT_EQ(world.host.scripts.size(), 2U) << row.what << " twice";
    }
}

TEST(Watcher, goesOnWithoutAHost) {
    BridgeWorld world;
    world.host.isInstalled = false;
    world.beginSession();
    world.run(10s);
    EXPECT_FALSE(world.daemon->isBridgeRunning());
    world.command("MUTE|1|1");
    EXPECT_EQ(world.commandFile.lines, Texts{"MUTE|1|0"}) << "kept for when there is one";
    world.host.isInstalled = true;
    world.run(2500ms);
    EXPECT_TRUE(world.daemon->isBridgeRunning());
}

TEST(Watcher, greetsAnIPhoneWithTheWholeSession) {
    BridgeWorld world;
    world.workspace.activate(terminal);
    world.volume.position = 0.28;
    world.forget();
    world.daemon->setBLEClientConnected(true);
    EXPECT_EQ(world.activeApps, Texts{"org.example.terminal"});
    EXPECT_EQ(world.commandFile.lines, Texts{"REFRESH"});
    EXPECT_EQ(world.packetKinds(), "T0 H T1 T2 T3 T0 M") << "the volume first";
    EXPECT_EQ(world.session().masterVolumeDB, -36);
    EXPECT_TRUE(world.session().midiSurfaceOnline);
    world.forget();
    world.daemon->setBLEClientConnected(false);
    world.volume.position = 0.5;
    world.workspace.activate(resolve);
    world.print("OXHDR|1|1|Shot|2\nOXTRK|1|1|A|Take|mono|1|0|0|0|0|65|0|0\n");
    world.run(10s);
    EXPECT_EQ(world.packetKinds(), "") << "nothing unasked to nobody";
    EXPECT_EQ(world.session().tracks.size(), 2U) << "but it is remembered";
}

TEST(Watcher, sendsMetersFifteenTimesASecond) {
    BridgeWorld world;
    world.daemon->setBLEClientConnected(true);
    world.forget();
    world.run(990ms);
    EXPECT_EQ(world.packetKinds(), "M M M M M M M M M M M M M M M");
}

TEST(Watcher, canEndInTheMiddleOfEverything) {
    BridgeWorld world;
    world.beginSession();
    world.print("OXTC|01:00:00:00|24|R|T|edit|1|1\nOXTC|01:00");
    world.daemon.reset();
    EXPECT_EQ(world.host.terminated, 1);
    EXPECT_EQ(world.queue.pendingTimers(), 0U);
    world.workspace.activate(terminal);
    world.run(10s);
}

}  // namespace
}  // namespace orbinex
