#include "app/linux/xdg_autostart.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/linux/desktop_entry.h"
#include "support/temporary_folder.h"

namespace orbinex {
namespace {

namespace fs = std::filesystem;
using Status = LoginItemStatus;

constexpr const char* entry = "config/autostart/orbinex.desktop";

struct Login {
    Login() {
        folder.write("bin/orb inex", "#!/bin/sh\n");
        fs::permissions(folder / "bin/orb inex", fs::perms::owner_all);
    }

    test::TemporaryFolder folder;
    int settingsOpened = 0;
    XdgAutostart item{{folder / "config", folder / "bin/orb inex", {"XFCE", "GNOME"}},
                      [this] { ++settingsOpened; }};
};

TEST(XdgAutostart, writesAndRemovesTheEntryThatTheDesktopReads) {
    Login login;
    EXPECT_EQ(login.item.status(), Status::notRegistered);
    EXPECT_EQ(login.item.unregisterItem(), std::nullopt);
    EXPECT_EQ(login.item.registerItem(), std::nullopt);
    EXPECT_EQ(login.item.status(), Status::enabled);
    const auto text = login.folder.read(entry);
    EXPECT_EQ(desktopEntryValue(text, "Type"), "Application");
    EXPECT_EQ(execArguments(*desktopEntryValue(text, "Exec")),
              (std::vector<std::string>{login.folder / "bin/orb inex", "--at-login"}));
    EXPECT_EQ(std::distance(fs::directory_iterator(login.folder / "config/autostart"), {}), 1)
        << "nothing is left of writing it";
    EXPECT_EQ(login.item.unregisterItem(), std::nullopt);
    EXPECT_FALSE(fs::exists(login.folder / entry));
    EXPECT_EQ(login.item.status(), Status::notRegistered);
}

TEST(XdgAutostart, readsBackWhatOthersMadeOfIt) {
    const struct {
        const char* lines;
        Status status;
    } rows[] = {
        {"", Status::enabled},
        {"X-GNOME-Autostart-enabled=true\nHidden=false\n", Status::enabled},
        {"Hidden=true\n", Status::requiresApproval},
        {"X-GNOME-Autostart-enabled=false\n", Status::requiresApproval},
        {"OnlyShowIn=KDE;\n", Status::requiresApproval},
        {"OnlyShowIn=KDE;GNOME;\n", Status::enabled},
        {"NotShowIn=XFCE;\n", Status::requiresApproval},
        {"NotShowIn=KDE;\n", Status::enabled},
        // Of another group.
        {"[Desktop Action x]\nHidden=true\n", Status::enabled},
    };
    for (const auto& row : rows) {
        Login login;
        ASSERT_EQ(login.item.registerItem(), std::nullopt);
        const auto line = "[Desktop Entry]\n" + execLine({login.folder / "bin/orb inex"});
        login.folder.write(entry, line + row.lines);
        EXPECT_EQ(login.item.status(), row.status) << row.lines;
    }
}

TEST(XdgAutostart, leavesWhatThePersonTurnedOffTurnedOff) {
    Login login;
    const std::string off = "[Desktop Entry]\nExec=orbinex\nHidden=true\n";
    login.folder.write(entry, off);
    EXPECT_EQ(login.item.registerItem(), std::nullopt);
    EXPECT_EQ(login.folder.read(entry), off);
    EXPECT_EQ(login.item.status(), Status::requiresApproval);
    EXPECT_EQ(login.item.unregisterItem(), std::nullopt);
    EXPECT_EQ(login.item.registerItem(), std::nullopt);
    EXPECT_EQ(login.item.status(), Status::enabled) << "switched off and on, it is their wish again";
    login.item.openSystemSettings();
    EXPECT_EQ(login.settingsOpened, 1);
}

TEST(XdgAutostart, startsNothingThatIsNotThere) {
    for (const std::string text :
         {"", "nonsense", "[Desktop Entry]\n", "[Desktop Entry]\nExec=\n",
          "[Desktop Entry]\nExec=/nowhere/x\n", "[Desktop Entry]\nExec=\"/\n", "\xff\xfe"}) {
        Login login;
        login.folder.write(entry, text);
        EXPECT_EQ(login.item.status(), Status::notFound) << text;
        EXPECT_EQ(login.item.registerItem(), std::nullopt);
        EXPECT_EQ(login.item.status(), Status::enabled);
    }
    Login huge;
    huge.folder.write(entry, std::string(1 << 20, 'x'));
    EXPECT_EQ(huge.item.status(), Status::notFound);
    Login pipe;
    fs::create_directories(pipe.folder / "config/autostart");
    ASSERT_EQ(::mkfifo((pipe.folder / entry).c_str(), 0600), 0);
    EXPECT_EQ(pipe.item.status(), Status::notFound) << "nobody waits for a writer";
}

TEST(XdgAutostart, saysWhyTheEntryCannotBeWritten) {
    Login login;
    login.folder.write("config/autostart", "a file in its place");
    const auto failure = login.item.registerItem();
    ASSERT_TRUE(failure);
    EXPECT_FALSE(failure->empty());
    EXPECT_EQ(login.item.status(), Status::notRegistered);
    EXPECT_TRUE(login.item.unregisterItem());
}

}  // namespace
}  // namespace orbinex
