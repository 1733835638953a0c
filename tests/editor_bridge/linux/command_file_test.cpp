#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editor_bridge/command_queue_file_path.h"
#include "editor_bridge/linux/tmp_command_file.h"

/// Not every file system can do this.
extern "C" int renameat2(int, const char*, int, const char*, unsigned) {
    errno = EINVAL;
    return -1;
}

namespace orbinex {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class TmpCommandFileTest : public testing::Test {
  protected:
    TmpCommandFileTest() {
        std::string pattern = fs::temp_directory_path() / "command_file_XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
        path_ = folder_ / "commands.txt";
    }
    ~TmpCommandFileTest() override { fs::remove_all(folder_); }

    /// Whatever can be seen of the folder's entries without opening them.
    [[nodiscard]] std::set<std::string> entries() const {
        std::set<std::string> result;
        for (const auto& entry : fs::directory_iterator(folder_)) {
            struct stat status {};
            ::lstat(entry.path().c_str(), &status);
            std::ostringstream text;
            text << entry.path() << ' ' << status.st_ino << ' ' << status.st_mode << ' ' << status.st_uid
                 << ' ' << status.st_size << ' ' << status.st_nlink << ' ' << status.st_mtim.tv_nsec;
            result.insert(text.str());
        }
        return result;
    }
    [[nodiscard]] mode_t rights() const {
        struct stat status {};
        return ::lstat(path_.c_str(), &status) == 0 ? status.st_mode & ALLPERMS : 0;
    }

    fs::path folder_;
    fs::path path_;
};

TEST_F(TmpCommandFileTest, collectsLinesForItsOwnerOnly) {
    EXPECT_EQ(commandQueueFilePath(1000), "/tmp/orbinex_resolve_cmd_1000.txt");
    TmpCommandFile file(path_);
    EXPECT_EQ(file.path(), path_.string());
    const auto mask = ::umask(0777);
    file.append("PAGE|edit");
    ::umask(mask);
    EXPECT_EQ(rights(), 0600U);
    ::chmod(path_.c_str(), 0666);
    file.append("TC|01:00:00:00");
    EXPECT_EQ(rights(), 0600U);
    EXPECT_EQ(contentOf(path_), "PAGE|edit\nTC|01:00:00:00\n");
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(TmpCommandFileTest, makesOneLineOfALine) {
    TmpCommandFile file(path_);
    for (const std::string& line :
         {std::string("TC|1\nMUTE|1|0"), std::string("TC|2\rMUTE|1|0"), std::string("TC|3\0MUTE|1|0", 13),
          std::string("\nMUTE|1|0"), std::string()})
        file.append(line);
    EXPECT_EQ(contentOf(path_), "TC|1\nTC|2\nTC|3\n");
}

TEST_F(TmpCommandFileTest, beginsAnewWhenNobodyReads) {
    TmpCommandFile file(path_);
    const std::string line(TmpCommandFile::mostWaiting / 2 - 1, 'x');
    file.append(line);
    file.append(line);
    EXPECT_EQ(fs::file_size(path_), TmpCommandFile::mostWaiting);
    file.append("fresh");
    EXPECT_EQ(contentOf(path_), "fresh\n");
    file.append(std::string(TmpCommandFile::mostWaiting, 'x'));
    EXPECT_EQ(contentOf(path_), "fresh\n");
}

TEST_F(TmpCommandFileTest, losesTheLineRatherThanTouchWhatIsNotOurs) {
    const bool isRoot = ::geteuid() == 0;
    constexpr uid_t somebody = 65534;
    const auto victim = folder_ / "victim";
    const auto makeFile = [](const fs::path& path) {
        std::ofstream(path) << "precious";
        ::chmod(path.c_str(), 0666);
    };
    const struct {
        const char* name;
        std::function<void()> plant;
        bool isOnlyByRoot = false;
    } rows[] = {
        {"a link to a file", [&] { fs::create_symlink(victim, path_); }},
        {"a link to nothing", [&] { fs::create_symlink(folder_ / "nothing", path_); }},
        {"a folder", [&] { fs::create_directory(path_); }},
        {"a pipe", [&] { ::mkfifo(path_.c_str(), 0666); }},
        {"a file with another name", [&] { fs::create_hard_link(victim, path_); }},
        {"a socket",
         [&] {
             sockaddr_un address{};
             address.sun_family = AF_UNIX;
             path_.string().copy(address.sun_path, sizeof address.sun_path - 1);
             const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
             ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
             ::close(socket);
         }},
        {"another user's file",
         [&] {
             makeFile(path_);
             ASSERT_EQ(::chown(path_.c_str(), 1, 1), 0);
         },
         true},
        {"a device", [&] { ::mknod(path_.c_str(), S_IFCHR | 0666, makedev(1, 3)); }, true},
    };
    ::chmod(folder_.c_str(), 01777);
    for (const auto& row : rows) {
        if (row.isOnlyByRoot && !isRoot) continue;
        fs::remove_all(path_);
        makeFile(victim);
        row.plant();
        const auto before = entries();
        TmpCommandFile(path_).append("PAGE|edit");
        EXPECT_EQ(entries(), before) << row.name;
        if (!isRoot) continue;
        // As an ordinary user, for whom root has planted it.
        const pid_t user = ::fork();
        if (user == 0) {
            if (::setresuid(somebody, somebody, somebody) != 0) ::_exit(1);
            TmpCommandFile(path_).append("PAGE|edit");
            ::_exit(0);
        }
        int status = -1;
        ::waitpid(user, &status, 0);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(entries(), before) << row.name << ", an ordinary user";
    }
}

TEST_F(TmpCommandFileTest, losesNothingToAReaderThatTakesTheFileAtAnyMoment) {
    constexpr int lines = 20'000;
    std::vector<int> seen;
    std::atomic<bool> isWritten = false;
    std::thread reader([&] {
        const fs::path taken = folder_ / "taken";
        for (bool isLast = false; !isLast;) {
            isLast = isWritten;
            if (::rename(path_.c_str(), taken.c_str()) != 0) continue;
            std::istringstream text(contentOf(taken));
            fs::remove(taken);
            // A last line without its end comes again.
            for (std::string line; std::getline(text, line) && !text.eof();) seen.push_back(std::stoi(line));
        }
    });
    TmpCommandFile file(path_);
    for (int i = 0; i < lines; ++i) file.append(std::to_string(i));
    isWritten = true;
    reader.join();

    EXPECT_TRUE(std::ranges::is_sorted(seen));
    const auto repeated = std::ranges::unique(seen);
    seen.erase(repeated.begin(), repeated.end());
    ASSERT_EQ(seen.size(), static_cast<std::size_t>(lines));
    EXPECT_EQ(seen.back(), lines - 1);
    EXPECT_TRUE(fs::is_empty(folder_));
}

}  // namespace
}  // namespace orbinex
