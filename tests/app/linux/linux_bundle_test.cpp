#include "app/linux/linux_bundle.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/app_relocation_manager.h"
#include "app/linux/application_id.h"
#include "app/linux/desktop_entry.h"
#include "app/linux/folder_copy.h"
#include "app/linux/real_path.h"
#include "sim/memory_defaults.h"
#include "sim/virtual_main_queue.h"
#include "support/environment_variable.h"
#include "support/temporary_folder.h"

namespace orbinex {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Command = std::vector<std::string>;

TEST(ProgramPlace, isMovableOnlyAsAnImageOrAFolderOfItsOwn) {
    const std::string desktopFile = std::string("/share/applications/") + applicationId + ".desktop";
    const struct {
        std::string executable;
        std::string image;
        std::string mounted;
        std::set<std::string> files;
        std::string program;
        std::optional<std::string> bundle;
    } rows[] = {
        {"/usr/bin/orbinex", "", "", {"/usr" + desktopFile}, "/usr/bin/orbinex", {}},
        {"/opt/orbinex/bin/orbinex", "", "", {"/opt/orbinex" + desktopFile}, "/opt/orbinex/bin/orbinex", {}},
        {"/home/a/Downloads/orbinex-1/bin/orbinex",
         "",
         "",
         {"/home/a/Downloads/orbinex-1" + desktopFile},
         "/home/a/Downloads/orbinex-1/bin/orbinex",
         "/home/a/Downloads/orbinex-1"},
        {"/media/a/disk/orbinex/bin/orbinex",
         "",
         "",
         {"/media/a/disk/orbinex" + desktopFile},
         "/media/a/disk/orbinex/bin/orbinex",
         "/media/a/disk/orbinex"},
        // Installed into a prefix that others share, and built.
        {"/home/a/.local/bin/orbinex",
         "",
         "",
         {"/home/a/.local" + desktopFile},
         "/home/a/.local/bin/orbinex",
         {}},
        {"/home/a/orbinex/bin/orbinex", "", "", {}, "/home/a/orbinex/bin/orbinex", {}},
        {"/home/a/orbinex/bin/orbinex",
         "",
         "",
         {"/home/a/orbinex" + desktopFile, "/home/a/orbinex/CMakeCache.txt"},
         "/home/a/orbinex/bin/orbinex",
         {}},
        {"/tmp/.mount_x/usr/bin/orbinex",
         "/home/a/Downloads/Orbinex.AppImage",
         "/tmp/.mount_x",
         {},
         "/home/a/Downloads/Orbinex.AppImage",
         "/home/a/Downloads/Orbinex.AppImage"},
        {"/tmp/.mount_x/usr/bin/orbinex",
         "/opt/Orbinex.AppImage",
         "/tmp/.mount_x",
         {},
         "/opt/Orbinex.AppImage",
         {}},
        // Started from within another image, whose variables it has inherited.
        {"/usr/bin/orbinex", "/home/a/Editor.AppImage", "/tmp/.mount_y", {}, "/usr/bin/orbinex", {}},
        {"/usr/bin/orbinex", "Editor.AppImage", "", {}, "/usr/bin/orbinex", {}},
        {"", "", "", {}, "", {}},
    };
    for (const auto& row : rows) {
        const auto place = programPlace({row.executable, row.image, row.mounted,
                                         [&](const std::string& path) { return row.files.contains(path); }});
        EXPECT_EQ(place.program, row.program) << row.executable;
        EXPECT_EQ(place.bundle, row.bundle) << row.executable;
    }
    EXPECT_FALSE(ownPlace().bundle) << "a test is not a program to move";
    EXPECT_TRUE(fs::exists(ownPlace().program));
}

TEST(CopyWhole, copiesEverythingAsItIsOrLeavesNothing) {
    const test::TemporaryFolder folder;
    folder.write("from/bin/program", "code");
    folder.write("from/share/deep/file", "data");
    fs::permissions(folder / "from/bin/program", fs::perms::owner_all);
    fs::create_symlink("../bin/program", folder / "from/share/link");
    fs::create_directory(folder / "to");
    const auto isAlone = [&](const std::string& name) {
        const auto count = std::distance(fs::directory_iterator(folder / "to"), {});
        return name.empty() ? count == 0 : count == 1 && fs::exists(folder / ("to/" + name));
    };

    ASSERT_TRUE(copyWhole(folder / "from", folder / "to/copy"));
    EXPECT_EQ(folder.read("to/copy/share/deep/file"), "data");
    EXPECT_EQ(fs::read_symlink(folder / "to/copy/share/link"), "../bin/program");
    EXPECT_EQ(::access((folder / "to/copy/bin/program").c_str(), X_OK), 0);
    EXPECT_TRUE(isAlone("copy"));
    // What has come to the place meanwhile stays.
    EXPECT_FALSE(copyWhole(folder / "from/bin/program", folder / "to/copy"));
    EXPECT_EQ(folder.read("to/copy/share/deep/file"), "data");
    EXPECT_TRUE(isAlone("copy"));
    fs::remove_all(folder / "to/copy");

    ASSERT_EQ(::mkfifo((folder / "from/share/pipe").c_str(), 0600), 0);
    EXPECT_FALSE(copyWhole(folder / "from", folder / "to/copy"));
    EXPECT_TRUE(isAlone(""));
    EXPECT_FALSE(copyWhole(folder / "absent", folder / "to/copy"));
    EXPECT_FALSE(copyWhole(folder / "from/bin", folder / "nowhere/copy"));
    EXPECT_TRUE(isAlone(""));
}

/// A home with an unpacked program among the downloads, and an instance that can be handed over.
struct Home {
    Home() {
        const std::string root = "Downloads/orbinex-1/";
        folder.write(root + "bin/orbinex", "code");
        folder.write(root + "share/applications/" + applicationId + ".desktop",
                     "[Desktop Entry]\nExec=orbinex\nStartupNotify=true\n"
                     "[Desktop Action Quit]\nExec=orbinex --quit\n");
        folder.write(root + "share/icons/hicolor/scalable/apps/" + applicationId + ".svg", "<svg/>");
        manager.offerMoveIfNeeded();
        queue.advance(1s);
    }

    test::TemporaryFolder folder;
    VirtualMainQueue queue;
    MemoryDefaults defaults;
    std::vector<Command> started;
    bool doesStart = true;
    bool isTaken = false;
    std::vector<std::string> calls;
    DesktopOpener::Start start = [this](const Command& command) {
        started.push_back(command);
        return doesStart;
    };
    DesktopOpener opener{{}, folder / "config", start};
    LinuxBundle bundle{programPlace({folder / "Downloads/orbinex-1/bin/orbinex", "", "",
                                     [](const std::string& path) { return path.ends_with(".desktop"); }}),
                       {folder.path(), folder / "config", folder / "data"},
                       {queue,
                        opener,
                        start,
                        {[this] { calls.emplace_back("release"); }, [this] { return isTaken; },
                         [this] { calls.emplace_back("reclaim"); }},
                        [this](const std::string& program) { calls.push_back("at login " + program); },
                        [this] { calls.emplace_back("quit"); }}};
    AppRelocationManager manager{queue, defaults, bundle};
};

TEST(LinuxBundle, movesToTheUsersApplicationsAndEndsOnceTheCopyHasTakenOver) {
    Home home;
    ASSERT_TRUE(*home.manager.alert);
    home.manager.answer(0);
    const std::string program = home.folder / "Applications/orbinex-1/bin/orbinex";
    EXPECT_EQ(home.folder.read("Applications/orbinex-1/bin/orbinex"), "code");
    EXPECT_EQ(::access(program.c_str(), X_OK), 0) << "a download need not be executable";
    EXPECT_TRUE(fs::exists(home.folder / "Downloads/orbinex-1/bin/orbinex")) << "the old one stays";
    const auto launcher = home.folder.read(std::string("data/applications/") + applicationId + ".desktop");
    EXPECT_EQ(execArguments(desktopEntryValue(launcher, "Exec").value_or("")), Command{program});
    EXPECT_EQ(desktopEntryValue(launcher, "TryExec"), program);
    EXPECT_EQ(desktopEntryFlag(launcher, "StartupNotify"), true) << "as the one that came with it";
    EXPECT_TRUE(launcher.ends_with("[Desktop Action Quit]\nExec=" + program + " --quit\n"));
    EXPECT_EQ(home.folder.read(std::string("data/icons/hicolor/scalable/apps/") + applicationId + ".svg"),
              "<svg/>");

    EXPECT_EQ(home.started, std::vector<Command>{Command{program}});
    home.queue.advance(5s);
    EXPECT_EQ(home.calls, std::vector<std::string>{"release"});
    home.isTaken = true;
    home.queue.advance(100ms);
    EXPECT_EQ(home.calls, (std::vector<std::string>{"release", "at login " + program, "quit"}));
    EXPECT_EQ(home.queue.pendingTimers(), 0U);
}

TEST(LinuxBundle, putsAnOldCopyIntoTheTrash) {
    Home home;
    // The home's trash takes what lies on the home's file system.
    const test::EnvironmentVariable homeFolder("HOME", home.folder / "");
    const test::EnvironmentVariable dataFolder("XDG_DATA_HOME", home.folder / "data");
    home.folder.write("Applications/orbinex-1/bin/orbinex", "old code");
    home.manager.answer(0);
    EXPECT_EQ(home.folder.read("Applications/orbinex-1/bin/orbinex"), "code");
    EXPECT_EQ(home.folder.read("data/Trash/files/orbinex-1/bin/orbinex"), "old code");
}

TEST(LinuxBundle, deletesAnOldCopyThatHasNoTrashToGoTo) {
    Home home;
    home.folder.write("Applications/orbinex-1/bin/orbinex", "old code");
    home.folder.write("data", "a file in its place");
    const auto before = fs::current_path();
    fs::create_directory(home.folder / "present");
    fs::current_path(home.folder / "present");
    home.manager.answer(0);
    fs::current_path(before);
    EXPECT_EQ(home.folder.read("Applications/orbinex-1/bin/orbinex"), "code");
    EXPECT_TRUE(fs::is_empty(home.folder / "present"));
}

TEST(LinuxBundle, goesOnWhenTheCopyDoesNotRun) {
    for (const bool doesStart : {false, true}) {
        Home home;
        home.doesStart = doesStart;
        home.manager.answer(0);
        home.queue.advance(10s);
        EXPECT_EQ(home.calls, (std::vector<std::string>{"release", "reclaim"}));
        ASSERT_TRUE(*home.manager.alert);
        EXPECT_EQ((*home.manager.alert)->kind, RelocationAlert::Kind::manualMove);
    }
}

TEST(LinuxBundle, explainsWhereItMayNotWrite) {
    Home home;
    home.folder.write("Applications", "a file in its place");
    home.manager.answer(0);
    ASSERT_TRUE(*home.manager.alert);
    EXPECT_EQ((*home.manager.alert)->kind, RelocationAlert::Kind::manualMove);
    EXPECT_EQ(home.folder.read("Applications"), "a file in its place");
    EXPECT_FALSE(fs::exists(home.folder / "data"));
    EXPECT_TRUE(home.calls.empty());
}

TEST(LinuxBundle, asksForNothingInTheApplicationsFolder) {
    const test::TemporaryFolder folder;
    // The folder itself, one on another disk, and a home that is a link.
    fs::create_directories(folder / "plain/Applications");
    fs::create_directories(folder / "disk/programs");
    fs::create_directories(folder / "linked");
    fs::create_directory_symlink("../disk/programs", folder / "linked/Applications");
    fs::create_directory_symlink("plain", folder / "other");
    const struct {
        const char* home;
        const char* program;
        bool isOffered;
    } rows[] = {{"plain", "plain/Applications/orbinex", false},
                {"plain", "disk/programs/orbinex", true},
                {"linked", "disk/programs/orbinex", false},
                {"other", "plain/Applications/orbinex", false},
                {"absent", "plain/Applications/orbinex", true}};
    for (const auto& row : rows) {
        VirtualMainQueue queue;
        DesktopOpener opener({}, "", [](const Command&) { return false; });
        const auto program = realPath(folder / row.program);
        LinuxBundle bundle({program + "/bin/orbinex", program, ""}, {folder / row.home, "", ""},
                           {queue, opener, {}, {}, {}, {}});
        MemoryDefaults defaults;
        AppRelocationManager manager(queue, defaults, bundle);
        manager.offerMoveIfNeeded();
        queue.advance(1min);
        EXPECT_EQ(manager.alert->has_value(), row.isOffered) << row.home << " " << row.program;
    }
}

}  // namespace
}  // namespace orbinex
