#include "app/linux/desktop_opener.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/linux/detached_program.h"
#include "app/product_links.h"
#include "app/system_settings_urls.h"
#include "support/environment_variable.h"
#include "support/temporary_folder.h"

namespace orbinex {
namespace {

using Command = std::vector<std::string>;

/// What is started where only these programs are installed.
struct Installed {
    std::set<std::string> programs;
    std::vector<Command> started;

    bool open(std::vector<std::string> desktops, std::string_view url) {
        DesktopOpener opener(std::move(desktops), "/home/ada/.config", [this](const Command& command) {
            if (!programs.contains(command.front())) return false;
            started.push_back(command);
            return true;
        });
        return url == "login" ? opener.openPanel(SettingsPanel::loginItems) : opener.open(url);
    }
};

TEST(DesktopOpener, opensTheSettingsOfTheRunningDesktop) {
    const std::string_view bluetooth = bluetoothSettingsUrl;
    const struct {
        std::vector<std::string> desktops;
        std::set<std::string> programs;
        std::string_view url;
        Command started;
    } rows[] = {
        {{"GNOME"},
         {"gnome-control-center", "blueman-manager"},
         bluetooth,
         {"gnome-control-center", "bluetooth"}},
        {{"ubuntu", "GNOME"}, {"gnome-control-center"}, bluetooth, {"gnome-control-center", "bluetooth"}},
        {{"KDE"}, {"systemsettings5", "xdg-open"}, bluetooth, {"systemsettings5", "kcm_bluetooth"}},
        {{"KDE"}, {"systemsettings"}, bluetoothPrivacySettingsUrl, {"systemsettings", "kcm_bluetooth"}},
        {{"KDE"}, {"systemsettings"}, accessibilitySettingsUrl, {"systemsettings", "kcm_access"}},
        {{"GNOME"},
         {"gnome-control-center"},
         accessibilitySettingsUrl,
         {"gnome-control-center", "universal-access"}},
        // Only GNOME's own programs open under any name of that desktop; elsewhere they refuse.
        {{"XFCE"}, {"gnome-control-center", "blueman-manager"}, bluetooth, {"blueman-manager"}},
        {{}, {"blueberry"}, bluetooth, {"blueberry"}},
        {{"XFCE"}, {"gnome-control-center"}, bluetooth, {}},
        {{"KDE"}, {"systemsettings", "xdg-open"}, "login", {"systemsettings", "kcm_autostart"}},
        // Its settings have no such panel.
        {{"GNOME"},
         {"gnome-control-center", "xdg-open"},
         "login",
         {"xdg-open", "/home/ada/.config/autostart"}},
        {{"XFCE"}, {"xfce4-session-settings"}, "login", {"xfce4-session-settings"}},
        {{"sway"}, {"xdg-open"}, "login", {"xdg-open", "/home/ada/.config/autostart"}},
    };
    for (const auto& row : rows) {
        Installed installed{row.programs, {}};
        EXPECT_EQ(installed.open(row.desktops, row.url), !row.started.empty()) << row.url;
        std::vector<Command> expected;
        if (!row.started.empty()) expected.push_back(row.started);
        EXPECT_EQ(installed.started, expected);
    }
}

TEST(DesktopOpener, opensWebPagesWithWhatIsThere) {
    Installed installed{{"gio"}, {}};
    EXPECT_TRUE(installed.open({}, "https://example.org/a?b=c&d=%20#e"));
    EXPECT_EQ(installed.started,
              (std::vector<Command>{{"gio", "open", "https://example.org/a?b=c&d=%20#e"}}));
    Installed bare;
    EXPECT_FALSE(bare.open({}, "https://example.org/"));
    for (const auto link : {appStoreUrl, privacyPolicyUrl, supportUrl})
        EXPECT_TRUE(isWebAddress(link)) << link;
}

TEST(DesktopOpener, opensNothingElse) {
    for (const std::string url :
         {"", "-h", "file:///etc/passwd", "javascript:alert(1)", "http://", "https:///x", "https://?x",
          "ftp://example.org/", "https://example.org/\nx", "https://example.org/a b",
          "https://example.org/\"", " https://example.org/", "https://ex\xc3\xa4mple.org/",
          "x-apple.systempreferences:anything"}) {
        Installed installed{{"xdg-open", "gio", "systemsettings"}, {}};
        EXPECT_FALSE(installed.open({"KDE"}, url)) << url;
        EXPECT_TRUE(installed.started.empty()) << url;
    }
    EXPECT_FALSE(isWebAddress("https://example.org/" + std::string(2048, 'a')));
    EXPECT_FALSE(isWebAddress(std::string_view("https://example.org/\0x", 22)));
}

TEST(DesktopOpener, startsRealProgramsAndTellsWhenThereAreNone) {
    EXPECT_TRUE(startDetached({"true", "an argument"}));
    {
        // By the token its window comes to the front.
        const test::TemporaryFolder folder;
        const auto pipe = folder / "pipe";
        ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        ASSERT_TRUE(startDetached({"sh", "-c", "echo $DESKTOP_STARTUP_ID >\"$0\"", pipe}, "x_TIME42"));
        EXPECT_EQ(folder.read("pipe"), "x_TIME42\n");
    }
    EXPECT_FALSE(startDetached({"orbinex-no-such-program"}));
    EXPECT_FALSE(startDetached({"/etc/passwd"}));
    EXPECT_FALSE(startDetached({"/"}));
    EXPECT_FALSE(startDetached({""}));
    EXPECT_FALSE(startDetached({}));
}

TEST(DesktopOpener, givesOtherProgramsNothingThatOnlyAnImageOfThisOneNeeds) {
    for (const bool isImage : {true, false}) {
        const auto image = isImage ? std::optional<std::string>("/home/ada/Orbinex.AppImage") : std::nullopt;
        const test::EnvironmentVariable appImage("APPIMAGE", image);
        const test::EnvironmentVariable libraries("LD_LIBRARY_PATH", "/mounted/lib");
        const test::EnvironmentVariable other("ORBINEX_TEST", "kept");
        const test::TemporaryFolder folder;
        const auto pipe = folder / "pipe";
        ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        ASSERT_TRUE(startDetached({"sh", "-c", "env >\"$0\"", pipe}));
        // Up to the end of the program.
        const auto environment = "\n" + folder.read("pipe");
        EXPECT_NE(environment.find("\nORBINEX_TEST=kept\n"), std::string::npos);
        EXPECT_EQ(environment.find("\nAPPIMAGE="), std::string::npos);
        EXPECT_EQ(environment.find("\nLD_LIBRARY_PATH=") == std::string::npos, isImage);
    }
}

}  // namespace
}  // namespace orbinex
