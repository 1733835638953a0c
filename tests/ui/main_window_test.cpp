// The main window, as a person sees and uses it.

#include <algorithm>

#include <gtest/gtest.h>

#include "app/product_links.h"
#include "app/system_settings_urls.h"
#include "pictures/faced_program.h"
#include "support/publish_in_test.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

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

TEST(MainWindow, tellsWhatTheLinkIsAboutToDoWithoutMovingTheTitle) {
    FacedProgram program;
    auto& phone = program.addPhone("Ada");
    program.bringTo(LinkPhase::connected, phone);
    Hand hand(program.window());
    phone.setInRange(false);
    program.advance(30s);
    hand.settle();
    ASSERT_EQ(program.phase(), LinkPhase::searching);
    const auto height = hand.property("connectionCard", "height");
    const auto y = hand.property("connectionTitle", "y");
    for (const char* line :
         {"Reconnecting in 4s…", "Waiting for a trusted iPhone…", "\u200FAda paused Orbinex"}) {
        PublishInTest::set(program.app.centralManager.statusMessage, {line});
        hand.settle();
        EXPECT_EQ(hand.property("connectionCard", "height"), height) << line;
        EXPECT_EQ(hand.property("connectionTitle", "y"), y) << line;
    }
    EXPECT_EQ(hand.text("connectionDetail"), "Ada paused Orbinex");
}

TEST(MainWindow, actsOnTheSecondRow) {
    FacedProgram program;
    for (const char* name : {"Ada", "Zoe"}) {
        program.bringTo(LinkPhase::connected, program.addPhone(name));
        program.app.centralManager.disconnect();
        program.advance(2s);
    }
    Hand hand(program.window());
    const QString second = hand.text("myPhone1/name");
    ASSERT_TRUE(hand.click("myPhone1/connect"));
    program.advance(3s);
    hand.settle();
    ASSERT_EQ(program.phase(), LinkPhase::connected);
    EXPECT_EQ(hand.text("connectionTitle"), "Connected to " + second);
    const char* const row = hand.text("myPhone0/name") == second ? "myPhone0" : "myPhone1";
    EXPECT_EQ(hand.text(QString(row) + "/status"), "Connected");
    ASSERT_TRUE(hand.click(QString(row) + "/disconnect"));
    program.advance(1s);
    EXPECT_EQ(program.phase(), LinkPhase::searching);
}

TEST(MainWindow, fillsAsManyBarsAsTheSignalHas) {
    FacedProgram program;
    const std::pair<int, int> rows[] = {{-50, 3}, {-70, 2}, {-88, 1}, {-99, 0}};
    for (const auto& [rssi, bars] : rows) program.addPhone("iPhone " + std::to_string(bars), rssi);
    program.advance(2s);
    Hand hand(program.window());
    for (int i = 0; const auto& [rssi, bars] : rows) {
        const QString signal = QString("nearbyPhone%1/signal").arg(i++);
        const auto inside = visibleItems(findItem(program.window().contentItem(), signal));
        const auto filled = std::ranges::count_if(
            inside, [](const QQuickItem* item) { return item->property("isFilled").toBool(); });
        EXPECT_EQ(filled, bars) << rssi;
    }
}

TEST(MainWindow, trustsTheIPhoneThatIsClicked) {
    FacedProgram program;
    program.trust("Studio", 2 * 86'400s);
    program.addPhone("Ada", -61);
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
    EXPECT_EQ(hand.text("connectionTitle"), "Let's connect your iPhone");
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
    EXPECT_EQ(hand.text("inputControlCard/inputTitle"), "Allow Orbinex to control this Mac");
    EXPECT_TRUE(hand.text("inputControlCard/inputText").startsWith("macOS requires your permission"));
    EXPECT_EQ(hand.text("inputControlCard/inputExplanation"), "Nothing here takes input.");
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
        {BluetoothState::unknown, "Starting…"},       {BluetoothState::poweredOn, "Allowed"},
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
    program.preferences.setTrayPresent(false);
    hand.settle();
    EXPECT_TRUE(hand.sees("showInMenuBar/subtitle")) << "there is no tray to show it in";
    program.preferences.setTrayPresent(true);
    hand.settle();
    EXPECT_FALSE(hand.sees("showInMenuBar/subtitle"));
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

TEST(MainWindow, tellsWhatItCouldNotOpen) {
    FacedProgram program;
    program.shell.urls.isWorking = false;
    Hand hand(program.window());
    ASSERT_TRUE(hand.click("support"));
    EXPECT_EQ(hand.text("messageTitle"), "Couldn't Open It");
    EXPECT_TRUE(hand.text("messageText").endsWith(QString::fromUtf8(supportUrl.data(), supportUrl.size())));
    ASSERT_TRUE(hand.click("messageButton0"));
    EXPECT_FALSE(hand.sees("messageTitle"));
    program.radio.setState(BluetoothState::poweredOff);
    program.advance(1s);
    hand.settle();
    ASSERT_TRUE(hand.click("connectionAction"));
    EXPECT_TRUE(hand.text("messageText").contains("“Bluetooth”"));
    ASSERT_TRUE(hand.click("messageButton0"));
    program.shell.permission.setGranted(false);
    program.shell.activation.didBecomeActive.emit();
    hand.settle();
    ASSERT_TRUE(hand.click("openSettings"));
    EXPECT_TRUE(hand.text("messageText").contains("“Accessibility”"));
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
