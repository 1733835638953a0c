// The main window, as a person sees and uses it.

#include <gtest/gtest.h>

#include "app/product_links.h"
#include "app/system_settings_urls.h"
#include "pictures/faced_program.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

TEST(MainWindow, showsTheConnectionInEveryPhase) {
    const struct {
        LinkPhase phase;
        const char* word;
        const char* title;
        const char* action;
        bool hasHint;
        bool hasGuide;
    } rows[] = {
        {LinkPhase::bluetoothUnavailable, "Bluetooth Unavailable", "Bluetooth Is Unavailable",
         "Open Bluetooth Settings", false, true},
        {LinkPhase::searching, "Searching", "Let's connect your iPhone", "Search Again", false, true},
        {LinkPhase::connecting, "Connecting", "Ada", "Cancel", false, true},
        {LinkPhase::securing, "Securing", "Ada", "Cancel", true, true},
        {LinkPhase::connected, "Connected", "Connected to Ada", "Disconnect", false, false},
    };
    for (const auto& row : rows) {
        FacedProgram program;
        auto& phone = program.addPhone("Ada");
        if (row.phase == LinkPhase::bluetoothUnavailable) {
            program.radio.setState(BluetoothState::poweredOff);
            program.advance(1s);
        } else if (row.phase != LinkPhase::searching) {
            program.bringTo(row.phase, phone);
        }
        Hand hand(program.window());
        EXPECT_EQ(hand.text("phaseWord"), row.word);
        EXPECT_EQ(hand.text("connectionTitle"), row.title);
        EXPECT_EQ(hand.text("connectionAction"), row.action);
        EXPECT_EQ(hand.sees("pairingHint"), row.hasHint) << row.word;
        EXPECT_EQ(hand.sees("setUpGuide"), row.hasGuide) << row.word;
    }
}

TEST(MainWindow, opensTheSettingsThatBluetoothNeeds) {
    const std::pair<BluetoothState, std::string_view> rows[] = {
        {BluetoothState::poweredOff, bluetoothSettingsUrl},
        {BluetoothState::unauthorized, bluetoothPrivacySettingsUrl},
    };
    for (const auto& [state, url] : rows) {
        FacedProgram program;
        program.radio.setState(state);
        program.advance(1s);
        Hand hand(program.window());
        ASSERT_TRUE(hand.click("connectionAction"));
        ASSERT_TRUE(hand.click("bluetoothPermission/action"));
        EXPECT_EQ(program.shell.urls.opened, (std::vector<std::string>(2, std::string(url))));
    }
}

TEST(MainWindow, actsOnTheRowsOfIPhones) {
    FacedProgram program;
    program.trust("Studio", 2 * 86'400s);
    auto& phone = program.addPhone("Ada", -61);
    program.advance(2s);
    Hand hand(program.window());
    EXPECT_EQ(hand.text("myPhone0/status"), "Last connected 2 days ago");
    EXPECT_EQ(hand.text("nearbyPhone0/status"), "New iPhone");
    EXPECT_EQ(hand.property("nearbyPhone0/signal", "bars"), 2);
    ASSERT_TRUE(hand.click("nearbyPhone0/trust"));
    EXPECT_EQ(hand.text("connectionTitle"), "Ada");
    program.advance(3s);
    hand.settle();
    ASSERT_EQ(program.phase(), LinkPhase::connected);
    EXPECT_EQ(hand.text("myPhone0/name"), "Ada");
    EXPECT_EQ(hand.text("myPhone0/status"), "Connected");
    EXPECT_FALSE(hand.sees("myPhone0/connect"));
    EXPECT_TRUE(hand.sees("noneNearbyTitle"));
    ASSERT_TRUE(hand.click("myPhone0/disconnect"));
    program.advance(1s);
    hand.settle();
    EXPECT_EQ(program.phase(), LinkPhase::searching);
    EXPECT_EQ(hand.text("myPhone0/status"), "Nearby");
    ASSERT_TRUE(hand.click("myPhone0/connect"));
    hand.settle();
    EXPECT_EQ(hand.text("myPhone0/status"), "Connecting…");
    EXPECT_FALSE(hand.sees("myPhone0/disconnect"));
    program.advance(3s);
    EXPECT_TRUE(phone.isConnected());
}

TEST(MainWindow, saysLastConnectedAnewAsTimePasses) {
    FacedProgram program;
    program.trust("Studio", 90s);
    Hand hand(program.window());
    EXPECT_EQ(hand.text("myPhone0/status"), "Last connected 1 minute ago");
    program.advance(61s);
    hand.settle();
    EXPECT_EQ(hand.text("myPhone0/status"), "Last connected 2 minutes ago");
}

TEST(MainWindow, saysWhatToDoWhileNoIPhoneIsThere) {
    FacedProgram program;
    Hand hand(program.window());
    EXPECT_TRUE(hand.sees("noTrusted"));
    EXPECT_EQ(hand.text("noneNearbyTitle"), "No new iPhones found yet.");
    EXPECT_TRUE(hand.sees("noneNearbyHelp"));
    program.radio.setState(BluetoothState::poweredOff);
    program.advance(1s);
    hand.settle();
    EXPECT_EQ(hand.text("noneNearbyTitle"), "Turn on Bluetooth to find nearby iPhones.");
    EXPECT_FALSE(hand.sees("noneNearbyHelp"));
}

TEST(MainWindow, showsThePermissions) {
    FacedProgram program({}, false);
    program.shell.permission.missing = "Nothing here takes input.";
    program.app.accessibilityManager.refresh();
    Hand hand(program.window());
    EXPECT_TRUE(hand.sees("inputControlCard"));
    EXPECT_EQ(hand.text("inputPermission/state"), "Required");
    EXPECT_EQ(hand.text("bluetoothPermission/state"), "Allowed");
    EXPECT_FALSE(hand.sees("bluetoothPermission/action"));
    ASSERT_TRUE(hand.click("allowAccess"));
    ASSERT_TRUE(hand.click("inputPermission/action"));
    EXPECT_EQ(program.shell.permission.requests, 2);
    ASSERT_TRUE(hand.click("openSettings"));
    EXPECT_EQ(program.shell.urls.opened, std::vector<std::string>{std::string(accessibilitySettingsUrl)});
    program.shell.permission.setGranted(true);
    program.advance(2s);
    hand.settle();
    EXPECT_FALSE(hand.sees("inputControlCard"));
    EXPECT_EQ(hand.text("inputPermission/state"), "Allowed");
    EXPECT_TRUE(hand.sees("inputPermission/satisfied"));
    EXPECT_FALSE(program.app.accessibilityManager.isPolling());
}

TEST(MainWindow, tellsEveryStateOfBluetooth) {
    const std::pair<BluetoothState, const char*> rows[] = {
        {BluetoothState::poweredOff, "Off"},          {BluetoothState::unauthorized, "Not allowed"},
        {BluetoothState::unsupported, "Unsupported"}, {BluetoothState::resetting, "Starting…"},
        {BluetoothState::poweredOn, "Allowed"},
    };
    FacedProgram program;
    Hand hand(program.window());
    for (const auto& [state, label] : rows) {
        program.radio.setState(state);
        program.advance(1s);
        hand.settle();
        EXPECT_EQ(hand.text("bluetoothPermission/state"), label);
    }
}

bool isOn(Hand& hand, const char* row) {
    return hand.property(QString(row) + "/switch", "checked").toBool();
}

TEST(MainWindow, keepsOneOfTheTwoPlacesSwitchedOn) {
    FacedProgram program;
    Hand hand(program.window());
    EXPECT_TRUE(isOn(hand, "showInDock") && isOn(hand, "showInMenuBar"));
    ASSERT_TRUE(hand.click("showInDock/switch"));
    EXPECT_FALSE(isOn(hand, "showInDock"));
    EXPECT_EQ(program.presence.activationPolicy(), ActivationPolicy::accessory);
    ASSERT_TRUE(hand.click("showInMenuBar/switch"));
    EXPECT_TRUE(isOn(hand, "showInDock"));
    EXPECT_FALSE(isOn(hand, "showInMenuBar"));
    EXPECT_FALSE(program.face.trayIcon().isShown());
    ASSERT_TRUE(hand.click("showInDock/switch"));
    EXPECT_FALSE(isOn(hand, "showInDock"));
    EXPECT_TRUE(isOn(hand, "showInMenuBar"));
    EXPECT_TRUE(program.face.trayIcon().isShown());
    EXPECT_EQ(program.defaults.boolean("showInDock"), false);
    ASSERT_TRUE(hand.click("autoConnect/switch"));
    EXPECT_FALSE(program.app.centralManager.autoConnectEnabled());
}

TEST(MainWindow, showsTheLoginItemAsTheSystemSaysItIs) {
    FacedProgram program;
    Hand hand(program.window());
    EXPECT_FALSE(isOn(hand, "openAtLogin"));
    ASSERT_TRUE(hand.click("openAtLogin/switch"));
    EXPECT_TRUE(isOn(hand, "openAtLogin"));
    EXPECT_FALSE(hand.sees("approve"));

    program.shell.loginItem.failure = "The folder is read-only.";
    ASSERT_TRUE(hand.click("openAtLogin/switch"));
    EXPECT_TRUE(isOn(hand, "openAtLogin")) << "a change that fails leaves the switch";
    EXPECT_EQ(hand.text("loginItemError"), "The folder is read-only.");

    program.shell.loginItem.failure = std::nullopt;
    program.shell.loginItem.present = LoginItemStatus::requiresApproval;
    program.shell.activation.didBecomeActive.emit();
    hand.settle();
    EXPECT_TRUE(isOn(hand, "openAtLogin"));
    ASSERT_TRUE(hand.click("approve"));
    EXPECT_EQ(program.shell.loginItem.settingsOpened, 1);
}

TEST(MainWindow, opensThePagesOfTheFooter) {
    FacedProgram program;
    Hand hand(program.window());
    EXPECT_EQ(hand.text("version"), "Orbinex " ORBINEX_VERSION " (" ORBINEX_BUILD_VERSION ")");
    for (const char* link : {"getTheApp", "privacyPolicy", "support"}) EXPECT_TRUE(hand.click(link)) << link;
    EXPECT_EQ(program.shell.urls.opened, (std::vector{std::string(appStoreUrl), std::string(privacyPolicyUrl),
                                                      std::string(supportUrl)}));
}

}  // namespace
}  // namespace orbinex::test
