#include "audio/linux/posix_media_file.h"

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "audio/linux/temporary_folder.h"

namespace orbinex {

namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

TEST(PosixMediaFile, opensOrdinaryFilesOnly) {
    const TemporaryFolder folder;
    const auto good = folder.file("good.wav", 10);
    ASSERT_EQ(::mkfifo(folder.path("pipe.wav").c_str(), 0600), 0);
    fs::create_directory(folder.path("folder.wav"));
    fs::create_symlink(folder.path("good.wav"), folder.path("link.wav"));
    fs::create_symlink(folder.path("circle.wav"), folder.path("circle.wav"));
    fs::create_symlink(folder.path("pipe.wav"), folder.path("link to pipe.wav"));
    sockaddr_un address{AF_UNIX, {}};
    folder.path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int listening = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

    const struct {
        std::string path;
        bool opens;
    } rows[] = {
        {good, true},
        {folder.path("link.wav"), true},
        {"", false},
        {folder.path("missing.wav"), false},
        {good + std::string("\0.wav", 5), false},
        {good + "/", false},
        {good + "/inner.wav", false},
        {folder.path("folder.wav"), false},
        {folder.path("pipe.wav"), false},
        {folder.path("link to pipe.wav"), false},
        {folder.path("circle.wav"), false},
        {folder.path("socket"), false},
        {"/dev/null", false},
        {"/dev/zero", false},
        {"/dev/tty", false},
        {"/proc/self/status", false},
        {"/proc/self/mem", false},
        {"/proc/kmsg", false},
        {"/sys/kernel/uevent_seqnum", false},
        {folder.path(std::string(300, 'x')), false},
        {"/" + std::string(100'000, 'x'), false},
        {"file://" + good, false},
        {"\xff\xfe\n\x01", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(PosixMediaFile::open(row.path) != nullptr, row.opens) << row.path.substr(0, 200);
    ::close(listening);
}

TEST(PosixMediaFile, readsAnywhereWithinTheFile) {
    const TemporaryFolder folder;
    const auto file = PosixMediaFile::open(folder.file("a", 1'000));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->size(), 1'000U);
    std::array<std::uint8_t, 100> bytes{};
    const struct {
        std::uint64_t offset;
        std::size_t count;
    } rows[] = {{0, 100},
                {950, 50},
                {999, 1},
                {1'000, 0},
                {std::uint64_t{1} << 40, 0},
                {INT64_MAX, 0},
                {UINT64_MAX, 0},
                {UINT64_MAX - 50, 0}};
    for (const auto& row : rows) {
        ASSERT_EQ(file->read(row.offset, bytes), row.count) << row.offset;
        ASSERT_EQ(file->readAtHand(row.offset, bytes) > row.count, false) << row.offset;
        for (std::size_t i = 0; i < row.count; ++i)
            ASSERT_EQ(bytes[i], TemporaryFolder::byteAt(row.offset + i));
    }
    file->prepare(UINT64_MAX, 10);
    file->prepare(0, UINT64_MAX);
}

TEST(PosixMediaFile, followsWhatHappensToAnOpenFile) {
    const TemporaryFolder folder;
    const auto path = folder.file("a", 1'000);
    const auto file = PosixMediaFile::open(path);
    std::array<std::uint8_t, 100> bytes{};
    ASSERT_TRUE(file);
    ASSERT_EQ(::truncate(path.c_str(), 550), 0);
    EXPECT_EQ(file->size(), 550U);
    EXPECT_EQ(file->read(500, bytes), 50U);
    EXPECT_EQ(file->read(600, bytes), 0U);

    const auto other = folder.file("b", 2'000, 0x55);
    ASSERT_EQ(::rename(other.c_str(), path.c_str()), 0);
    EXPECT_EQ(file->size(), 550U) << "the file that was opened stays";
    fs::remove(path);
    EXPECT_EQ(file->read(0, bytes), 100U);
    EXPECT_EQ(bytes[7], TemporaryFolder::byteAt(7));
}

TEST(PosixMediaFile, isNotInheritedByOtherPrograms) {
    const TemporaryFolder folder;
    const int lowestFree = ::dup(0);
    ::close(lowestFree);
    const auto file = PosixMediaFile::open(folder.file("a", 10));
    ASSERT_TRUE(file);
    EXPECT_EQ(::fcntl(lowestFree, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST(PosixMediaFile, leavesDescriptorsForTheRestOfTheProgram) {
    const TemporaryFolder folder;
    const auto path = folder.file("a", 10);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few{80, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<std::unique_ptr<PosixMediaFile>> files;
    for (int i = 0; i < 80; ++i) files.push_back(PosixMediaFile::open(path));
    EXPECT_TRUE(files.front());
    EXPECT_FALSE(files.back());
    const int free = ::dup(0);
    EXPECT_GE(free, 0);
    ::close(free);
    ::setrlimit(RLIMIT_NOFILE, &before);
}

}  // namespace

}  // namespace orbinex
