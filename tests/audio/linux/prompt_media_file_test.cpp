#include "audio/linux/prompt_media_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "audio/background/manual_media_workers.h"
#include "audio/background/media_threads.h"
#include "audio/background/patience.h"
#include "audio/linux/temporary_folder.h"
#include "support/allocation_counter.h"
#include "support/page_cache.h"

namespace orbinex {

namespace {

using namespace std::chrono_literals;
using Access = PosixMediaFile::Access;
using test::ManualMediaWorkers;
using test::TemporaryFolder;

constexpr std::size_t fileBytes = 3'000'000;

struct PromptWorld {
    TemporaryFolder folder;
    std::shared_ptr<ManualMediaWorkers> workers = std::make_shared<ManualMediaWorkers>();
    ManualMediaWorkers::AtEnd atEnd{workers};
    std::string path = folder.file("a", fileBytes);

    std::unique_ptr<PromptMediaFile> open(Access access) {
        return std::make_unique<PromptMediaFile>(PosixMediaFile::open(path), access, workers);
    }
    void cool() const { test::forgetInPageCache(path); }
};

/// Reads and compares what came; returns how much that was.
std::size_t readAndCheck(MediaFile& file, std::uint64_t offset, std::size_t count, std::size_t seed = 0) {
    std::vector<std::uint8_t> bytes(count);
    const auto read = file.read(offset, bytes);
    EXPECT_LE(read, count);
    for (std::size_t i = 0; i < read; ++i)
        if (bytes[i] != TemporaryFolder::byteAt(offset + i, seed)) {
            ADD_FAILURE() << "wrong byte at " << offset + i;
            break;
        }
    return read;
}

std::size_t bytesAt(std::uint64_t offset, std::size_t count) {
    return offset >= fileBytes ? 0 : std::min<std::uint64_t>(count, fileBytes - offset);
}

TEST(PromptMediaFile, readsWhatTheFileHasInEveryWay) {
    PromptWorld world;
    world.workers->stepsPerWait = 1'000;
    std::mt19937 random(20'262);
    for (const auto access : {Access::memory, Access::pageCache, Access::none}) {
        const auto file = world.open(access);
        EXPECT_EQ(file->size(), fileBytes);
        for (int i = 0; i < 400; ++i) {
            const std::uint64_t offset = random() % (fileBytes + 50'000);
            const std::size_t count = random() % 20'000;
            if (random() % 20 == 0) world.cool();
            ASSERT_EQ(readAndCheck(*file, offset, count), bytesAt(offset, count)) << offset << " " << count;
            world.workers->time += 10ms;
        }
        EXPECT_EQ(readAndCheck(*file, UINT64_MAX - 10, 11), 0U);
        EXPECT_EQ(readAndCheck(*file, UINT64_MAX, 1), 0U);
        EXPECT_EQ(readAndCheck(*file, INT64_MAX, 1'000), 0U);
    }
}

TEST(PromptMediaFile, givesOnlyWhatIsThereWhenTheDiskIsSlow) {
    PromptWorld world;
    for (const auto access : {Access::pageCache, Access::none}) {
        const auto file = world.open(access);
        std::mt19937 random(5);
        for (int i = 0; i < 400; ++i) {
            world.workers->stepsPerWait = static_cast<int>(random() % 3);
            if (random() % 10 == 0) world.cool();
            readAndCheck(*file, random() % fileBytes, random() % 100'000);
            if (random() % 4 == 0) world.workers->runStep();
        }
    }
}

TEST(PromptMediaFile, readsCopiesWithoutWaitingOnceTheyAreThere) {
    PromptWorld world;
    const auto file = world.open(Access::none);
    EXPECT_EQ(readAndCheck(*file, 100'000, 1'000), 0U);
    EXPECT_EQ(readAndCheck(*file, 100'000, 1'000), 0U);
    EXPECT_EQ(world.workers->waits, 1) << "it is waited for once";
    world.workers->runAll();
    // Onwards in steps of a tick's length: what comes next is there already.
    for (std::uint64_t offset = 100'000; offset < 1'500'000; offset += 25'000) {
        EXPECT_EQ(readAndCheck(*file, offset, 8'192), 8'192U) << offset;
        world.workers->runAll();
        world.workers->time += 66ms;
    }
    // And back.
    world.workers->stepsPerWait = 10;
    for (std::uint64_t offset = 1'500'000; offset > 100'000; offset -= 25'000) {
        EXPECT_EQ(readAndCheck(*file, offset, 8'192), 8'192U) << offset;
        world.workers->runAll();
        world.workers->time += 66ms;
    }
    EXPECT_LE(world.workers->waits, 2);
}

TEST(PromptMediaFile, readsWhatIsInMemoryWithoutWorkersOrAllocations) {
    PromptWorld world;
    for (const auto access : {Access::pageCache, Access::none}) {
        if (access == Access::pageCache && PosixMediaFile::open(world.path)->access() != access) continue;
        const auto file = world.open(access);
        world.workers->stepsPerWait = 10;
        std::array<std::uint8_t, 8'192> bytes{};
        std::uint64_t offset = 500'000;
        ASSERT_EQ(file->read(offset, bytes), bytes.size());
        world.workers->runAll();
        const int waits = world.workers->waits;
        EXPECT_EQ(test::allocationsDuring([&] {
                      for (int i = 0; i < 100; ++i) EXPECT_EQ(file->read(offset, bytes), bytes.size());
                  }),
                  0U);
        EXPECT_EQ(world.workers->waits, waits);
        EXPECT_FALSE(world.workers->runStep());
    }
}

TEST(PromptMediaFile, doesNotInsistOnAPageCacheThatKeepsNothing) {
    // No file system says so and has none to show, so this one has another kind of file behind it: on tmpfs
    // nothing is ever "in the page cache".
    const std::filesystem::path memory = "/dev/shm";
    if (!std::filesystem::is_directory(memory)) GTEST_SKIP() << "no /dev/shm";
    const TemporaryFolder folder(memory);
    const auto workers = std::make_shared<ManualMediaWorkers>();
    const ManualMediaWorkers::AtEnd atEnd(workers);
    workers->stepsPerWait = 10;
    auto posix = PosixMediaFile::open(folder.file("a", fileBytes));
    if (posix->access() != Access::memory) GTEST_SKIP() << "/dev/shm is a disk";
    PromptMediaFile file(std::move(posix), Access::pageCache, workers);
    std::size_t read = 0;
    for (int i = 0; i < 4; ++i) read = readAndCheck(file, 100'000, 5'000);
    EXPECT_EQ(read, 5'000U);
}

TEST(PromptMediaFile, survivesWhatHappensToTheFile) {
    for (const auto access : {Access::memory, Access::pageCache, Access::none}) {
        PromptWorld world;
        world.workers->stepsPerWait = 10;
        const auto file = world.open(access);
        EXPECT_EQ(readAndCheck(*file, 1'000'000, 4'096), 4'096U);
        std::filesystem::remove(world.path);
        EXPECT_EQ(readAndCheck(*file, 2'000'000, 4'096), 4'096U);

        const auto path = world.folder.file("b", fileBytes);
        PromptMediaFile shrinking(PosixMediaFile::open(path), access, world.workers);
        EXPECT_EQ(readAndCheck(shrinking, 0, 4'096), 4'096U);
        ASSERT_EQ(::truncate(path.c_str(), 1'002'000), 0);
        EXPECT_EQ(readAndCheck(shrinking, 1'000'000, 4'096), 2'000U);
        EXPECT_EQ(readAndCheck(shrinking, 2'000'000, 4'096), 0U);
        EXPECT_EQ(shrinking.size(), 1'002'000U);
        // It is written anew.
        static_cast<void>(world.folder.file("b", fileBytes));
        world.workers->time += 501ms;
        EXPECT_EQ(readAndCheck(shrinking, 1'000'000, 4'096), 4'096U);
        EXPECT_EQ(readAndCheck(shrinking, 2'000'000, 4'096), 4'096U);
    }
}

TEST(PromptMediaFile, closesTheFileInTheBackground) {
    PromptWorld world;
    const int lowestFree = ::dup(0);
    ::close(lowestFree);
    auto file = world.open(Access::none);
    ASSERT_NE(::fcntl(lowestFree, F_GETFD), -1);
    EXPECT_EQ(readAndCheck(*file, 0, 100), 0U);
    file.reset();
    EXPECT_NE(::fcntl(lowestFree, F_GETFD), -1);
    world.workers->runAll();
    EXPECT_EQ(::fcntl(lowestFree, F_GETFD), -1);
}

TEST(PromptMediaFile, readsOnThreadsToo) {
    PromptWorld world;
    const MediaThreads threads;
    for (const auto access : {Access::pageCache, Access::none}) {
        PromptMediaFile file(PosixMediaFile::open(world.path), access, threads.workers());
        std::mt19937 random(9);
        const test::Patience patience;
        std::size_t read = 0;
        for (int i = 0; i < 1'000 || (read == 0 && patience.isLeft()); ++i) {
            if (i % 100 == 0) world.cool();
            read += readAndCheck(file, random() % fileBytes, 4'096);
        }
        EXPECT_GT(read, 0U);
    }
}

}  // namespace

}  // namespace orbinex
