// What the interface decides from values alone.

#include <gtest/gtest.h>

#include "ui/connection_face.h"
#include "ui/interface_texts.h"
#include "ui/panel_placement.h"
#include "ui/phone_row.h"
#include "ui/relative_date.h"
#include "ui/settings_model.h"
#include "ui/x11_window_hints.h"

namespace orbinex {
namespace {

TEST(SignalBars, changeAtTheirThresholds) {
    const std::pair<int, int> rows[] = {{127, 3}, {0, 3},   {-59, 3}, {-60, 3}, {-61, 2},
                                        {-75, 2}, {-76, 1}, {-90, 1}, {-91, 0}, {-100, 0}};
    for (const auto& [rssi, bars] : rows) EXPECT_EQ(signalBars(rssi), bars) << rssi;
}

TEST(RelativeDate, saysHowLongAgoInTheLargestWholeUnit) {
    constexpr double day = 86'400;
    const std::pair<double, const char*> rows[] = {
        {-3'600, "just now"},       {0, "just now"},           {59.9, "just now"},
        {60, "1 minute ago"},       {119, "1 minute ago"},     {120, "2 minutes ago"},
        {3'599, "59 minutes ago"},  {3'600, "1 hour ago"},     {7'200, "2 hours ago"},
        {day - 1, "23 hours ago"},  {day, "yesterday"},        {2 * day, "2 days ago"},
        {7 * day, "last week"},     {15 * day, "2 weeks ago"}, {30 * day, "last month"},
        {90 * day, "3 months ago"}, {365 * day, "last year"},  {800 * day, "2 years ago"},
        {1e300, "9999 years ago"},
    };
    const Date now(Seconds(800'000'000.0));
    for (const auto& [ago, text] : rows) EXPECT_EQ(relativeDate(now - Seconds(ago), now), text) << ago;
}

TEST(StartupTime, isTheNumberAtTheEndOfTheToken) {
    const std::pair<const char*, std::optional<std::uint32_t>> rows[] = {
        {"", std::nullopt},
        {"host/launcher/1-2-host_TIME4294967295", 4'294'967'295},
        {"_TIME1_TIME22", 22},
        {"gnome_TIME4294967296", std::nullopt},
        {"gnome_TIME0", std::nullopt},
        {"gnome_TIME-5", std::nullopt},
        {"gnome_TIME12x", std::nullopt},
        {"gnome_TIME", std::nullopt},
        {"gnome", std::nullopt},
    };
    for (const auto& [token, time] : rows) EXPECT_EQ(startupTime(token), time) << token;
}

TEST(PanelPosition, isAtTheIconAndOnTheScreen) {
    const QRect screen(0, 0, 1280, 876);
    const QSize panel(340, 300);
    const struct {
        const char* what;
        QRect icon;
        QPoint pointer;
        QRect available;
        QSize panel;
        QPoint position;
    } rows[] = {
        {"below an icon at the top", {600, 0, 24, 24}, {}, {0, 24, 1280, 876}, panel, {441, 32}},
        {"above an icon at the bottom", {600, 876, 24, 24}, {}, screen, panel, {441, 568}},
        {"at the right edge", {1257, 876, 22, 24}, {}, screen, panel, {932, 568}},
        {"at the left edge", {0, 876, 22, 24}, {}, screen, panel, {8, 568}},
        {"at the pointer without an icon", {}, {700, 10}, screen, panel, {530, 19}},
        {"on the second screen", {2500, 0, 24, 24}, {}, {1280, 0, 1280, 900}, panel, {2212, 32}},
        {"larger than the screen", {100, 0, 24, 24}, {}, {0, 0, 320, 240}, panel, {8, 8}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(panelPosition(row.icon, row.pointer, row.available, row.panel), row.position) << row.what;
}

TEST(InterfaceTexts, fillInWhatIsMissing) {
    EXPECT_EQ(InterfaceText::version("2.1.0", "77"), "Orbinex 2.1.0 (77)");
    EXPECT_EQ(InterfaceText::version("", ""), "Orbinex 1.0 (1)");
    EXPECT_EQ(InterfaceText::forgetTitle("Ada's iPhone"), "Forget Ada's iPhone?");
    EXPECT_EQ(InterfaceText::forgetTitle(""), "Forget this iPhone?");
    EXPECT_EQ(InterfaceText::signal(2), "Signal 2 of 3");
    EXPECT_EQ(InterfaceText::trayIcon("Searching"), "Orbinex — Searching");
}

TEST(ConnectionFace, namesTheIPhoneOrSaysIPhone) {
    const auto face = [](LinkPhase phase, std::optional<std::string> name, bool anyTrusted = true) {
        const auto made = connectionFace(phase, name, anyTrusted);
        return std::pair(made.panelStatus, made.windowTitle);
    };
    using Texts = std::pair<std::string, std::string>;
    EXPECT_EQ(face(LinkPhase::connecting, "Ada"), Texts("Connecting to Ada…", "Ada"));
    EXPECT_EQ(face(LinkPhase::connecting, {}), Texts("Connecting to iPhone…", "Connecting…"));
    EXPECT_EQ(face(LinkPhase::securing, "Ada"), Texts("Securing connection…", "Ada"));
    EXPECT_EQ(face(LinkPhase::securing, {}), Texts("Securing connection…", "Connecting…"));
    EXPECT_EQ(face(LinkPhase::connected, {}), Texts("Connected to iPhone", "Connected to iPhone"));
    EXPECT_EQ(face(LinkPhase::searching, {}, false),
              Texts("No iPhone connected", "Let's connect your iPhone"));
}

TEST(TrustedRow, readsAsItStands) {
    const Date now(Seconds(800'000'000.0));
    TrustedDevice device;
    device.name = "Ada";
    const auto row = [&](TrustedStanding standing) { return trustedRow(device, standing, now); };
    const struct {
        TrustedStanding standing;
        const char* panel;
        const char* window;
        bool canConnect;
        bool canDisconnect;
    } rows[] = {
        {{LinkPhase::connecting, true, true}, "Connecting…", "Connecting…", false, false},
        {{LinkPhase::securing, true, true}, "Connecting…", "Securing…", false, false},
        {{LinkPhase::connected, true, false}, "Connected", "Connected", false, true},
        {{LinkPhase::connected, false, true}, "Nearby", "Nearby", true, false},
        {{LinkPhase::searching, false, false}, "Not nearby", "Not nearby", true, false},
    };
    for (const auto& expected : rows) {
        const PhoneRow made = row(expected.standing);
        EXPECT_EQ(made.panelStatus, expected.panel);
        EXPECT_EQ(made.windowStatus, expected.window);
        EXPECT_EQ(made.canConnect, expected.canConnect) << expected.window;
        EXPECT_EQ(made.canDisconnect, expected.canDisconnect) << expected.window;
    }
    device.lastConnected = now - Seconds(3 * 86'400.0);
    EXPECT_EQ(row({}).windowStatus, "Last connected 3 days ago");
    EXPECT_EQ(row({}).panelStatus, "Not nearby");
    EXPECT_EQ(row({LinkPhase::searching, false, true}).windowStatus, "Nearby");
}

TEST(ShownName, staysOnOneLineAndCannotReverseIt) {
    EXPECT_EQ(shownName(""), "iPhone");
    EXPECT_EQ(shownName("Ada\nConnected"), "Ada?Connected");
    EXPECT_EQ(shownName("a\xE2\x80\xAE"
                        "b"),
              "a?b");
}

TEST(BluetoothStateLabel, tellsEveryState) {
    EXPECT_STREQ(bluetoothStateLabel(BluetoothState::unsupported), "Unsupported");
    EXPECT_STREQ(bluetoothStateLabel(BluetoothState::unauthorized), "Not allowed");
    EXPECT_STREQ(bluetoothStateLabel(BluetoothState::poweredOff), "Off");
    EXPECT_STREQ(bluetoothStateLabel(BluetoothState::unknown), "Starting…");
    EXPECT_STREQ(bluetoothStateLabel(BluetoothState::resetting), "Starting…");
}

}  // namespace
}  // namespace orbinex
