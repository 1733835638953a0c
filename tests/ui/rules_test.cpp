// What the interface decides from values alone.

#include <QStringList>

#include <gtest/gtest.h>

#include "ui/connection_face.h"
#include "ui/interface_texts.h"
#include "ui/panel_placement.h"
#include "ui/phone_row.h"
#include "ui/relative_date.h"
#include "ui/shown_text.h"
#include "ui/typeface.h"
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
        QRect available;
        QPoint position;
    } rows[] = {
        {"below an icon at the top", {600, 0, 24, 24}, {0, 24, 1280, 876}, {441, 32}},
        {"above an icon at the bottom", {600, 876, 24, 24}, screen, {441, 568}},
        {"at the right edge", {1257, 876, 22, 24}, screen, {932, 568}},
        {"at the left edge", {0, 876, 22, 24}, screen, {8, 568}},
        {"on the second screen", {2500, 0, 24, 24}, {1280, 0, 1280, 900}, {2212, 32}},
        {"larger than the screen", {100, 0, 24, 24}, {0, 0, 320, 240}, {8, 8}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(panelPosition(row.icon, row.available, panel), row.position) << row.what;
}

TEST(InterfaceTexts, fillInWhatIsMissing) {
    EXPECT_EQ(InterfaceText::version("2.1.0", "77"), "Orbinex 2.1.0 (77)");
    EXPECT_EQ(InterfaceText::version("", ""), "Orbinex 1.0 (1)");
    EXPECT_EQ(InterfaceText::forgetTitle("Ada's iPhone"), "Forget Ada's iPhone?");
    EXPECT_EQ(InterfaceText::forgetTitle(""), "Forget this iPhone?");
    EXPECT_EQ(InterfaceText::signal(2), "Signal 2 of 3");
    EXPECT_EQ(InterfaceText::trayIcon("Searching"), "Orbinex — Searching");
}

TEST(ConnectionFace, saysIPhoneWhereThereIsNoNameAndTheLinksLineWhereItTellsMore) {
    const struct {
        LinkPhase phase;
        const char* panelStatus;
        const char* title;
        const char* line;
        bool isShown;
    } rows[] = {
        {LinkPhase::bluetoothUnavailable, "Bluetooth unavailable", "Bluetooth Is Unavailable",
         "This Mac doesn't support Bluetooth Low Energy.", true},
        {LinkPhase::searching, "Waiting for your iPhone", "Waiting for your iPhone",
         "Waiting for a trusted iPhone…", false},
        {LinkPhase::searching, "Waiting for your iPhone", "Waiting for your iPhone",
         "Waiting for your iPhone", false},
        {LinkPhase::searching, "Waiting for your iPhone", "Waiting for your iPhone", "Reconnecting in 4s…",
         true},
        {LinkPhase::connecting, "Connecting to iPhone…", "Connecting…", "Connecting to Ada…", true},
        {LinkPhase::securing, "Securing connection…", "Connecting…", "Securing connection with Ada…", true},
        {LinkPhase::connected, "Connected to iPhone", "Connected to iPhone", "Connected to Ada", false},
    };
    for (const auto& row : rows) {
        const ConnectionFace face = connectionFace({row.phase, std::nullopt, row.line}, true);
        EXPECT_EQ(face.panelStatus, row.panelStatus);
        EXPECT_EQ(face.windowTitle, row.title);
        EXPECT_EQ(face.windowDetail, row.isShown ? row.line : "");
    }
}

TEST(TrustedRow, saysWhenItWasConnectedWhileItIsNotNearby) {
    const Date now(Seconds(800'000'000.0));
    TrustedDevice device;
    device.lastConnected = now - Seconds(3 * 86'400.0);
    EXPECT_EQ(trustedRow(device, {}, now).windowStatus, "Last connected 3 days ago");
    EXPECT_EQ(trustedRow(device, {}, now).panelStatus, "Not nearby");
    EXPECT_EQ(trustedRow(device, {LinkPhase::connected, false, true}, now).windowStatus, "Nearby");
    EXPECT_EQ(trustedRow(device, {LinkPhase::connected, false, true}, now).panelStatus, "Nearby");
}

TEST(ShownName, staysOnOneLineAndCannotReverseIt) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "iPhone"},
        {"Ada\nConnected", "Ada?Connected"},
        {"a\u202Eb", "a?b"},
        {"\u200E\u200F\u061C", "iPhone"},
        {"\u200Fيسرى\u200E", "يسرى"},
        {"\u061CAda\u200E's \u200EiPhone", "Ada's iPhone"},
        {"👩\u200D💻", "👩\u200D💻"},
    };
    for (const auto& [name, shown] : rows) EXPECT_EQ(shownName(name), shown);
}

TEST(Typeface, isFuturaWhereItIsInstalledElseTheNearest) {
    const struct {
        QStringList installed;
        const char* book;
        const char* light;
    } rows[] = {
        {{"Futura-Book", "Futura-Light", "Futura", "League Spartan"}, "Futura-Book", "Futura-Light"},
        {{"Futura", "League Spartan", "League Spartan Light"}, "Futura", "Futura"},
        {{"League Spartan", "URW Gothic"}, "League Spartan", "League Spartan"},
        {{"URW Gothic"}, "URW Gothic", "URW Gothic"},
        {{}, "Desktop Sans", "Desktop Sans"},
    };
    for (const auto& row : rows) {
        const Typeface chosen = chooseTypeface(
            [&](const QString& family) { return row.installed.contains(family); }, "Desktop Sans");
        EXPECT_EQ(chosen.book, row.book);
        EXPECT_EQ(chosen.light, row.light);
    }
}

}  // namespace
}  // namespace orbinex
