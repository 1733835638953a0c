#include "app/app_preferences.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sim/memory_defaults.h"
#include "sim/simulated_presence.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {
namespace {

using Calls = std::vector<std::string>;

TEST(AppPreferences, neverLoadWithoutAPlaceToBeReachedAt) {
    const struct {
        std::optional<bool> dock;
        std::optional<bool> menuBar;
        bool loadedDock;
        bool loadedMenuBar;
    } rows[] = {
        {{}, {}, true, true},       {true, true, true, true}, {false, true, false, true},
        {true, false, true, false}, {false, {}, false, true}, {{}, false, true, false},
        {false, false, true, true},
    };
    for (const auto& row : rows) {
        MemoryDefaults defaults;
        if (row.dock) defaults.setBoolean("showInDock", *row.dock);
        if (row.menuBar) defaults.setBoolean("showMenuBarIcon", *row.menuBar);
        const AppPreferences preferences(defaults);
        EXPECT_EQ(*preferences.showInDock, row.loadedDock);
        EXPECT_EQ(*preferences.showMenuBarIcon, row.loadedMenuBar);
    }
}

struct PreferencesDesktop {
    PreferencesDesktop() { preferences.attach(presence, queue); }

    VirtualMainQueue queue;
    MemoryDefaults defaults;
    SimulatedPresence presence;
    AppPreferences preferences{defaults};
};

TEST(AppPreferences, turnTheOtherPlaceOnWhenBothWouldBeOff) {
    PreferencesDesktop desktop;
    auto& preferences = desktop.preferences;
    preferences.setShowInDock(false);
    desktop.queue.runDue();
    EXPECT_EQ(desktop.presence.calls, (Calls{"accessory", "activate", "raise"}));

    // The tray icon goes, also because the desktop takes it away: back to the task bar.
    desktop.presence.calls.clear();
    preferences.setShowMenuBarIcon(false);
    EXPECT_TRUE(*preferences.showInDock);
    EXPECT_FALSE(*preferences.showMenuBarIcon);
    EXPECT_EQ(desktop.presence.calls, (Calls{"regular", "activate"}));
    EXPECT_EQ(desktop.defaults.boolean("showInDock"), true);
    EXPECT_EQ(desktop.defaults.boolean("showMenuBarIcon"), false);

    desktop.presence.calls.clear();
    preferences.setShowInDock(false);
    EXPECT_TRUE(*preferences.showMenuBarIcon);
    EXPECT_EQ(desktop.defaults.boolean("showMenuBarIcon"), true);
    EXPECT_EQ(desktop.defaults.boolean("showInDock"), false);
    EXPECT_EQ(desktop.presence.policy, ActivationPolicy::accessory);

    const AppPreferences next(desktop.defaults);
    EXPECT_FALSE(*next.showInDock);
    EXPECT_TRUE(*next.showMenuBarIcon);
}

TEST(AppPreferences, leaveThePolicyAloneWhereItNeedNotChange) {
    PreferencesDesktop desktop;
    int announced = 0;
    const auto dock = desktop.preferences.showInDock.onWillChange([&](bool) { ++announced; });
    const auto menuBar = desktop.preferences.showMenuBarIcon.onWillChange([&](bool) { ++announced; });
    desktop.preferences.applyActivationPolicy();
    desktop.preferences.setShowInDock(true);
    desktop.preferences.setShowMenuBarIcon(true);
    EXPECT_EQ(announced, 0);
    EXPECT_TRUE(desktop.defaults.values.empty());

    desktop.preferences.setShowMenuBarIcon(false);
    desktop.preferences.setShowMenuBarIcon(true);
    desktop.queue.runDue();
    EXPECT_EQ(announced, 2);
    EXPECT_TRUE(desktop.presence.calls.empty());
}

TEST(AppPreferences, keepTheTaskBarWhereThereIsNoTray) {
    PreferencesDesktop desktop;
    auto& preferences = desktop.preferences;
    EXPECT_TRUE(preferences.isTrayIconSeen());
    preferences.setShowInDock(false);
    desktop.queue.runDue();
    desktop.presence.calls.clear();
    for (const bool isPresent : {false, false, true, true}) preferences.setTrayPresent(isPresent);
    desktop.queue.runDue();
    EXPECT_EQ(desktop.presence.calls, (Calls{"regular", "accessory"})) << "and nothing comes to the front";
    EXPECT_FALSE(*preferences.showInDock) << "what the person has set stays";
    preferences.setTrayPresent(false);
    EXPECT_FALSE(preferences.isTrayIconSeen());
    preferences.setShowInDock(true);
    preferences.setShowInDock(false);
    EXPECT_EQ(desktop.presence.policy, ActivationPolicy::regular);
}

TEST(AppPreferences, waitWithThePolicyUntilThereIsAnApplication) {
    VirtualMainQueue queue;
    MemoryDefaults defaults;
    SimulatedPresence presence;
    AppPreferences preferences(defaults);
    preferences.setShowInDock(false);
    preferences.attach(presence, queue);
    preferences.applyActivationPolicy();
    EXPECT_EQ(presence.calls, Calls{"accessory"});
    // The windows go before what was to be done with them.
    preferences.detach();
    queue.runDue();
    EXPECT_EQ(presence.calls, Calls{"accessory"});
}

}  // namespace
}  // namespace orbinex
