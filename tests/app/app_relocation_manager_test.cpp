#include "app/app_relocation_manager.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/app_delegate.h"
#include "app/relocation_rules.h"
#include "sim/memory_defaults.h"
#include "sim/simulated_bundle.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;
using Kind = RelocationAlert::Kind;

TEST(RelocationRules, offerTheMoveOnlyWhereItHelps) {
    const struct {
        const char* path;
        bool isOffered;
    } rows[] = {
        {"/home/ada/Downloads/Orbinex.app", true},
        {"/media/ada/Orbinex/Orbinex.app", true},
        {"/Applications/Orbinex.app", false},
        {"/Applications/Video/Orbinex.app", false},
        {"/System/Applications/Orbinex.app", false},
        {"/home/ada/Applications/Orbinex.app", false},
        {"/home/ada/Applications/Video/Orbinex.app", false},
        // A folder whose name only begins so is another folder.
        {"/home/ada/Applications.old/Orbinex.app", true},
        {"/home/bob/Applications/Orbinex.app", true},
        {"/home/ada/DerivedData/Debug/Orbinex.app", false},
        {"/home/ada/orbinex/build/Build/Products/Orbinex.app", false},
        {"/home/ada/DerivedData.app", true},
        {"/home/ada/Downloads/Tests.xctest", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(
            isMoveOffered({.bundlePath = row.path, .userApplicationsFolder = "/home/ada/Applications/"}),
            row.isOffered)
            << row.path;
    }
    const char* const outside = "/home/ada/Applications/Orbinex.app";
    EXPECT_TRUE(isMoveOffered({.bundlePath = outside})) << "without a folder of the user's own";
    EXPECT_TRUE(isMoveOffered({.bundlePath = outside, .userApplicationsFolder = ""}));
    EXPECT_FALSE(isMoveOffered({.isRunUnderTest = true, .bundlePath = outside}));
    EXPECT_FALSE(isMoveOffered({.bundlePath = outside, .isSuppressed = true}));
}

struct Launch {
    VirtualMainQueue queue;
    MemoryDefaults defaults;
    SimulatedBundle bundle;
    AppRelocationManager manager{queue, defaults, bundle};

    /// Up to the offer.
    void offer() {
        manager.offerMoveIfNeeded();
        queue.advance(600ms);
        ASSERT_TRUE(*manager.alert);
        ASSERT_EQ((*manager.alert)->kind, Kind::offer);
    }
};

TEST(AppRelocationManager, asksAMomentAfterLaunch) {
    Launch launch;
    launch.manager.offerMoveIfNeeded();
    launch.queue.advance(599ms);
    EXPECT_FALSE(*launch.manager.alert);
    launch.queue.advance(1ms);
    ASSERT_TRUE(*launch.manager.alert);
    EXPECT_EQ((*launch.manager.alert)->buttons.size(), 2U);
    EXPECT_FALSE((*launch.manager.alert)->suppression.empty());
    launch.manager.answer(1);
    EXPECT_FALSE(*launch.manager.alert);
    EXPECT_TRUE(launch.bundle.calls.empty());
    EXPECT_TRUE(launch.defaults.values.empty());
    launch.manager.answer(0);
    EXPECT_TRUE(launch.bundle.calls.empty()) << "nothing waits for an answer any more";
}

TEST(AppRelocationManager, keepsQuietWhereThereIsNothingToOffer) {
    const auto isQuiet = [](const auto& prepare) {
        Launch launch;
        prepare(launch);
        launch.manager.offerMoveIfNeeded();
        launch.queue.advance(1min);
        return !*launch.manager.alert;
    };
    EXPECT_TRUE(isQuiet([](Launch& launch) { launch.bundle.location.reset(); }));
    EXPECT_TRUE(isQuiet([](Launch& launch) { launch.bundle.environment.insert(testHostVariable); }));
    EXPECT_TRUE(isQuiet([](Launch& launch) { launch.bundle.location = "/Applications/Orbinex.app"; }));
    EXPECT_TRUE(isQuiet(
        [](Launch& launch) { launch.defaults.setBoolean("OrbinexSuppressMoveToApplicationsAlert", true); }));
    EXPECT_FALSE(isQuiet([](Launch&) {}));
}

TEST(AppRelocationManager, remembersThatItShallNotAskWhicheverButtonIsPressed) {
    for (const std::size_t button : {0U, 1U}) {
        Launch launch;
        launch.offer();
        launch.manager.answer(button, true);
        EXPECT_EQ(launch.defaults.boolean("OrbinexSuppressMoveToApplicationsAlert"), true);
        AppRelocationManager next(launch.queue, launch.defaults, launch.bundle);
        next.offerMoveIfNeeded();
        launch.queue.advance(1min);
        EXPECT_FALSE(*next.alert);
    }
}

TEST(AppRelocationManager, movesByCopyAndEndsOnceTheCopyRuns) {
    const std::string from = "/home/ada/Downloads/Orbinex.app";
    const std::string to = "/Applications/Orbinex.app";
    for (const bool isThereAnOldOne : {false, true}) {
        Launch launch;
        if (isThereAnOldOne) launch.bundle.files.insert(to);
        launch.offer();
        launch.manager.answer(0);
        Calls expected;
        if (isThereAnOldOne) expected.push_back("trash " + to);
        expected.insert(expected.end(), {"copy " + from + " " + to, "prepare " + to, "launch " + to});
        EXPECT_EQ(launch.bundle.calls, expected);
        launch.bundle.launched(true);
        EXPECT_EQ(launch.bundle.calls.back(), "terminate");
        EXPECT_FALSE(*launch.manager.alert);
    }
}

TEST(AppRelocationManager, explainsHowToMoveItByHandWhateverFails) {
    const std::string from = "/home/ada/Downloads/Orbinex.app";
    const std::string to = "/Applications/Orbinex.app";
    const Calls instructions{"reveal " + from, "folder /Applications"};
    const struct {
        std::set<std::string> failing;
        Calls before;
    } rows[] = {
        {{"write"}, {}},
        {{"trash", "remove"}, {"trash " + to, "remove " + to}},
        {{"copy"}, {"trash " + to, "copy " + from + " " + to}},
        {{"trash", "copy"}, {"trash " + to, "remove " + to, "copy " + from + " " + to}},
        {{"launch"}, {"trash " + to, "copy " + from + " " + to, "prepare " + to, "launch " + to}},
    };
    for (const auto& row : rows) {
        Launch launch;
        launch.bundle.files.insert(to);
        launch.bundle.failing = row.failing;
        launch.offer();
        launch.manager.answer(0);
        if (launch.bundle.launched) launch.bundle.launched(false);
        Calls expected = row.before;
        expected.insert(expected.end(), instructions.begin(), instructions.end());
        EXPECT_EQ(launch.bundle.calls, expected);
        ASSERT_TRUE(*launch.manager.alert);
        EXPECT_EQ((*launch.manager.alert)->kind, Kind::manualMove);
        launch.manager.answer(0);
        EXPECT_FALSE(*launch.manager.alert);
        EXPECT_EQ(launch.bundle.calls, expected) << "OK moves nothing";
    }
}

TEST(AppRelocationManager, movesNothingOntoOrIntoTheRunningProgram) {
    for (const std::string path : {"/data/Orbinex.app", "/data"}) {
        Launch launch;
        launch.bundle.location = path;
        launch.bundle.folder = "/data";
        launch.bundle.files.insert("/data/Orbinex.app");
        launch.offer();
        launch.manager.answer(0);
        EXPECT_EQ(launch.bundle.calls, (Calls{"reveal " + path, "folder /data"}));
    }
}

TEST(AppRelocationManager, isSafeToGoAtAnyTime) {
    VirtualMainQueue queue;
    MemoryDefaults defaults;
    SimulatedBundle bundle;
    {
        AppRelocationManager manager(queue, defaults, bundle);
        manager.offerMoveIfNeeded();
    }
    queue.advance(1s);
    {
        AppRelocationManager manager(queue, defaults, bundle);
        manager.offerMoveIfNeeded();
        queue.advance(1s);
        manager.answer(0);
    }
    bundle.launched(true);
    EXPECT_NE(bundle.calls.back(), "terminate");
}

TEST(AppDelegate, opensTheWindowForAPersonAndNotAtLogin) {
    Launch launch;
    AppPreferences preferences(launch.defaults);
    int opened = 0;
    AppDelegate delegate(preferences, launch.manager, [&] { ++opened; });
    delegate.didFinishLaunching(true);
    EXPECT_EQ(opened, 0);
    launch.queue.advance(600ms);
    EXPECT_TRUE(*launch.manager.alert) << "the offer to move does not depend on how it was started";
    delegate.handleSecondLaunch();
    delegate.didFinishLaunching(false);
    EXPECT_EQ(opened, 2);
}

}  // namespace
}  // namespace orbinex
