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

std::string entryFor(const std::vector<std::string>& arguments) {
    return withDesktopEntryValue("[Desktop Entry]\n", "Exec", execValue(arguments));
}

struct Login {
    Login() {
        folder.write("bin/orb inex", "#!/bin/sh\n");
        fs::permissions(folder / "bin/orb inex", fs::perms::owner_all);
    }

    test::TemporaryFolder folder;
    int settingsOpened = 0;
    bool hasSettings = true;
    XdgAutostart item{{folder / "config", folder / "bin/orb inex", {"XFCE", "GNOME"}}, [this] {
                          ++settingsOpened;
                          return hasSettings;
                      }};
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
    EXPECT_EQ(desktopEntryValue(text, "TryExec"), login.folder / "bin/orb inex");
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
        {"TryExec=sh\n", Status::enabled},
        {"TryExec=/nowhere/orbinex\n", Status::notFound},
        // Of another group.
        {"[Desktop Action x]\nHidden=true\n", Status::enabled},
    };
    for (const auto& row : rows) {
        Login login;
        ASSERT_EQ(login.item.registerItem(), std::nullopt);
        login.folder.write(entry, entryFor({login.folder / "bin/orb inex"}) + row.lines);
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
    EXPECT_EQ(login.item.openSystemSettings(), std::nullopt);
    EXPECT_EQ(login.settingsOpened, 1);
    login.hasSettings = false;
    EXPECT_TRUE(login.item.openSystemSettings().value_or("").ends_with(login.folder / entry));
}

TEST(XdgAutostart, followsTheProgramUnlessSomebodyHasChangedTheEntry) {
    const std::string there = "/bin/sh";
    const std::string gone = "/nowhere/orbinex-1/bin/orbinex";
    const struct {
        std::vector<std::string> arguments;
        const char* lines;
        /// After the move, and after a launch of another copy.
        bool isFollowed;
        bool isRepaired;
    } rows[] = {
        {{there, "--at-login"}, "", true, false},
        {{gone, "--at-login"}, "Name=Kept\nTryExec=/nowhere\n", true, true},
        {{gone, "--at-login"}, "Hidden=true\n", false, false},
        {{gone, "--at-login"}, "X-GNOME-Autostart-enabled=false\n", false, false},
        {{gone, "--at-login"}, "NotShowIn=GNOME;\n", false, false},
        {{gone, "--at-login", "--adapter", "hci1"}, "", false, false},
        {{gone}, "", false, false},
        {{"orbinex", "--at-login"}, "", false, false},
        {{"env", "X=1", gone, "--at-login"}, "", false, false},
    };
    for (const auto& row : rows) {
        for (const bool isMoved : {true, false}) {
            Login login;
            const auto before = entryFor(row.arguments) + row.lines;
            const std::string program = login.folder / "bin/orb inex";
            login.folder.write(entry, before);
            if (isMoved) {
                login.item.follow(program);
            } else {
                login.item.repair();
            }
            const auto after = login.folder.read(entry);
            if (isMoved ? row.isFollowed : row.isRepaired) {
                EXPECT_EQ(execArguments(desktopEntryValue(after, "Exec").value_or("")),
                          (std::vector<std::string>{program, "--at-login"}));
                EXPECT_EQ(desktopEntryValue(after, "Name"), desktopEntryValue(before, "Name"));
                EXPECT_EQ(login.item.status(), Status::enabled) << before;
            } else {
                EXPECT_EQ(after, before);
            }
        }
    }
    Login off;
    off.item.follow("/bin/sh");
    off.item.repair();
    EXPECT_EQ(off.item.status(), Status::notRegistered);
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
