#include <QCoreApplication>
#include <QEventLoop>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/linux/qt_main_queue.h"
#include "editor_bridge/linux/linux_script_host.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

QCoreApplication& application() {
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    static QCoreApplication instance(argc, argv);
    return instance;
}

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}
bool hasChildren() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

/// A host whose scripts are those of the shell.
class LinuxScriptHostTest : public testing::Test {
  protected:
    LinuxScriptHostTest() {
        std::string pattern = fs::temp_directory_path() / "script_host_XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
        path_ = write("host", "#!/bin/sh\n[ $# = 4 ] && [ \"$1 $2 $3\" = '-l lua -x' ] && eval \"$4\"\n");
        host_.emplace(path_, queue_);
    }
    ~LinuxScriptHostTest() override {
        process_.reset();
        host_.reset();
        EXPECT_FALSE(hasChildren());
        fs::remove_all(folder_);
    }

    std::string write(const std::string& name, const std::string& text,
                      fs::perms rights = fs::perms::owner_all) {
        const std::string path = folder_ / name;
        std::ofstream(path) << text;
        fs::permissions(path, rights);
        return path;
    }

    void launch(const std::string& script) {
        output_.clear();
        exits_ = 0;
        process_ = host_->launch(script, {[this](ByteView bytes) {
                                              output_.append(bytes.begin(), bytes.end());
                                              if (onOutput_) onOutput_();
                                          },
                                          [this] {
                                              ++exits_;
                                              if (onExit_) onExit_();
                                          }});
    }

    /// Turns the event loop until it holds; a failure when it takes too long.
    void await(const std::function<bool()>& condition) {
        bool isLate = false;
        const Timer deadline = queue_.after(30s, [&] { isLate = true; });
        const Timer tick = queue_.every(2ms, [] {});
        while (!condition() && !isLate) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_FALSE(isLate);
    }
    void awaitExit() {
        await([this] { return exits_ > 0; });
    }

    QCoreApplication& application_ = application();
    QtMainQueue queue_;
    fs::path folder_;
    std::string path_;
    std::optional<LinuxScriptHost> host_;
    std::unique_ptr<ScriptHost::Process> process_;
    std::string output_;
    int exits_ = 0;
    std::function<void()> onOutput_;
    std::function<void()> onExit_;
};

TEST_F(LinuxScriptHostTest, handsOverAllOutputBeforeTheEndHoweverTheHostEnds) {
    const struct {
        const char* script;
        std::string output;
    } rows[] = {
        {"exit 0", ""},
        {"printf 'last words'; exit 3", "last words"},
        {"printf shot; kill -KILL $$", "shot"},
        {"printf closed; exec >&-; exit", "closed"},
        {"head -c 300000 /dev/zero", std::string(300'000, '\0')},
        {"echo 'unseen' >&2; cat; printf x", "x"},
        // What it leaves behind keeps the pipe, silent or not.
        {"sleep 30 & printf heir; exit", "heir"},
    };
    for (const auto& row : rows) {
        launch(row.script);
        ASSERT_TRUE(process_) << row.script;
        onExit_ = [this] { EXPECT_FALSE(process_->isRunning()); };
        EXPECT_TRUE(process_->isRunning());
        awaitExit();
        EXPECT_TRUE(output_ == row.output) << row.script << " printed " << output_.size() << " bytes";
        EXPECT_EQ(exits_, 1);
    }
    launch("yes & echo $! > " + (folder_ / "heir").string());
    awaitExit();
    pid_t heir = 0;
    std::ifstream(folder_ / "heir") >> heir;
    ASSERT_GT(heir, 1);
    // It has died of the closed pipe, or is about to.
    ::kill(heir, SIGKILL);
}

TEST_F(LinuxScriptHostTest, takesAScriptOfAnyUsualLength) {
    launch("# " + std::string(100'000, 'x') + "\nprintf ran");
    awaitExit();
    EXPECT_EQ(output_, "ran");
}

TEST_F(LinuxScriptHostTest, startsNothingWithoutAHostThatCanRun) {
    const auto descriptors = openDescriptors();
    for (const auto& path :
         {std::string("/nowhere/host"), std::string(), folder_.string(),
          write("plain", "#!/bin/sh\n", fs::perms::owner_read), write("broken", "#!/nowhere/shell\n")}) {
        LinuxScriptHost host(path, queue_);
        EXPECT_FALSE(host.launch("exit", {[](ByteView) {}, [] {}})) << path;
    }
    launch(std::string(1'000'000, 'x'));
    EXPECT_FALSE(process_) << "longer than an argument can be";
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(LinuxScriptHostTest, runsOnWhenItsPipeIsClosed) {
    const auto before = openDescriptors();
    launch("exec >&-; exec sleep 1000");
    const auto running = openDescriptors();
    await([&] { return openDescriptors() < running; });
    EXPECT_TRUE(process_->isRunning());
    process_.reset();
    await([] { return !hasChildren(); });
    EXPECT_EQ(exits_, 0);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LinuxScriptHostTest, letsTimersThroughAFloodAndEndsInTheMidstOfIt) {
    int ticks = 0;
    const Timer tick = queue_.every(1ms, [&] { ++ticks; });
    std::size_t received = 0;
    onOutput_ = [&] {
        received += output_.size();
        output_.clear();
        if (received > 8'000'000 && ticks > 3) process_.reset();
    };
    launch("exec yes");
    await([] { return !hasChildren(); });
    EXPECT_EQ(exits_, 0);
    EXPECT_FALSE(process_);
}

TEST_F(LinuxScriptHostTest, mayBeDestroyedAndReplacedWhenItEnds) {
    int launches = 1;
    onExit_ = [&] {
        if (launches++ < 3)
            launch("printf next");
        else
            process_.reset();
    };
    launch("exit");
    await([&] { return launches == 4; });
    EXPECT_EQ(output_, "next");
}

TEST_F(LinuxScriptHostTest, killsWhatIgnoresTheRequestToEnd) {
    const auto stubborn = "trap '' TERM; echo ready; while :; do sleep 0.1; done";
    for (const bool isHostDestroyed : {false, true}) {
        launch(stubborn);
        await([this] { return !output_.empty(); });
        process_.reset();
        EXPECT_TRUE(hasChildren()) << "it was waited for";
        if (isHostDestroyed) {
            host_.reset();
            EXPECT_FALSE(hasChildren());
        } else {
            await([] { return !hasChildren(); });
        }
    }
}

TEST_F(LinuxScriptHostTest, givesTheHostNoneOfOurSignalsAndDescriptors) {
    const int inheritable = ::open("/dev/null", O_RDONLY);  // NOLINT: that is the point
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    std::vector<std::pair<int, sighandler_t>> dispositions;
    for (const int number : {SIGPIPE, SIGTTIN, SIGTTOU, SIGTERM})
        dispositions.emplace_back(number, ::signal(number, SIG_IGN));

    launch("grep -E '^Sig(Blk|Ign)' /proc/self/status; exec ls /proc/self/fd");
    awaitExit();
    const std::string none = ":\t0000000000000000\n";
    EXPECT_EQ(output_, "SigBlk" + none + "SigIgn" + none + "0\n1\n2\n3\n") << "3 is the folder being listed";

    for (const auto& [number, handler] : dispositions) ::signal(number, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::close(inheritable);
}

TEST_F(LinuxScriptHostTest, leavesNothingAfterAThousandLaunches) {
    launch("exit");
    awaitExit();
    process_.reset();
    const auto descriptors = openDescriptors();
    for (int i = 0; i < 1000; ++i) {
        const bool isEndedByUs = i % 2 == 0;
        launch(isEndedByUs ? "exec sleep 1000" : "echo bye");
        ASSERT_TRUE(process_) << i;
        if (!isEndedByUs) awaitExit();
        process_.reset();
    }
    await([] { return !hasChildren(); });
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(LinuxScriptHostTest, takesTheHostAlongWhenTheProgramIsKilled) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t program = ::fork();
    if (program == 0) {
        launch("echo $$ > " + (folder_ / "pid").string() + "; exec sleep 1000");
        while (!fs::exists(folder_ / "pid") || fs::file_size(folder_ / "pid") == 0) ::usleep(1000);
        [[maybe_unused]] const auto size = ::write(ends[1], "x", 1);
        for (;;) ::pause();
    }
    pollfd started{ends[0], POLLIN, 0};
    ASSERT_EQ(::poll(&started, 1, 30'000), 1);
    pid_t host = 0;
    std::ifstream(folder_ / "pid") >> host;
    const int exit = static_cast<int>(::syscall(SYS_pidfd_open, host, 0));
    ASSERT_GE(exit, 0);
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    pollfd ended{exit, POLLIN, 0};
    EXPECT_EQ(::poll(&ended, 1, 30'000), 1);
    for (const int descriptor : {exit, ends[0], ends[1]}) ::close(descriptor);
}

}  // namespace
}  // namespace orbinex
