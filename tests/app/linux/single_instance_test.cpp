#include "app/linux/single_instance.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "app/linux/core_application.h"
#include "app/linux/instance_socket.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/runtime_folder.h"
#include "support/temporary_folder.h"

namespace orbinex {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Claim = SingleInstance::Claim;

class SingleInstanceTest : public testing::Test {
  protected:
    /// What a later start comes to, with the first one's event loop running meanwhile.
    Claim startLater(const std::optional<std::string>& token) {
        Claim claim{};
        bool isOver = false;
        std::thread later([&] {
            SingleInstance instance(folder_.path());
            claim = instance.claim(token, 20s);
            queue_.post([&] { isOver = true; });
        });
        while (!isOver) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        later.join();
        return claim;
    }
    void serve() {
        first_.serve(queue_,
                     {[this](const std::string& token) { tokens_.push_back(token); }, [this] { ++quits_; }});
    }
    /// A connection to whoever listens.
    [[nodiscard]] int visit() const {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const auto path = folder_ / "orbinex.socket";
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return fd;
    }
    /// Waits, with the event loop running, until the other end has hung up; true when it has said nothing.
    static bool isHungUpOn(int fd) {
        for (;;) {
            std::array<char, 16> bytes{};
            const auto count = ::recv(fd, bytes.data(), bytes.size(), MSG_DONTWAIT);
            if (count >= 0 || errno == ECONNRESET) return count <= 0;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    QCoreApplication& application_ = coreApplication();
    QtMainQueue queue_;
    test::TemporaryFolder folder_;
    std::vector<std::string> tokens_;
    int quits_ = 0;
    SingleInstance first_{folder_.path()};
};

TEST_F(SingleInstanceTest, isAskedToShowItselfByEveryLaterStart) {
    ASSERT_EQ(first_.claim("", 0ms), Claim::first);
    serve();
    EXPECT_EQ(startLater("token_TIME42"), Claim::told);
    EXPECT_EQ(startLater(""), Claim::told);
    EXPECT_EQ(startLater(std::nullopt), Claim::told) << "a start at login asks for nothing";
    EXPECT_EQ(startLater("two\nopen lines\n"), Claim::told);
    EXPECT_EQ(tokens_, (std::vector<std::string>{"token_TIME42", "", "twoopen lines"}));
}

TEST_F(SingleInstanceTest, isAskedToEnd) {
    const SingleInstance other(folder_.path());
    EXPECT_TRUE(other.askToQuit(0ms)) << "there is none";
    ASSERT_EQ(first_.claim("", 0ms), Claim::first);
    EXPECT_FALSE(other.askToQuit(30ms)) << "it hangs";
    serve();
    // What was asked while it did not look is done as well.
    while (quits_ < 1) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(quits_, 1);
    EXPECT_TRUE(tokens_.empty());
}

TEST_F(SingleInstanceTest, isSucceededWhenItHasDiedWhateverItLeft) {
    ASSERT_EQ(first_.claim("", 0ms), Claim::first);
    const auto copy = folder_ / "kept";
    fs::create_hard_link(folder_ / "orbinex.socket", copy);
    first_.release();
    fs::rename(copy, folder_ / "orbinex.socket");
    SingleInstance next(folder_.path());
    EXPECT_EQ(next.claim("", 0ms), Claim::first);
    EXPECT_TRUE(first_.isTaken());
    EXPECT_FALSE(next.isTaken());
}

TEST_F(SingleInstanceTest, isNotWaitedForLongWhenItHangs) {
    ASSERT_EQ(first_.claim("", 0ms), Claim::first);
    // It listens, and never looks.
    SingleInstance later(folder_.path());
    EXPECT_EQ(later.claim("", 30ms), Claim::unanswered);
    // Nor is one that does not even listen, or does not take what is in its queue.
    fs::remove(folder_ / "orbinex.socket");
    EXPECT_EQ(later.claim("", 30ms), Claim::unanswered);
}

TEST_F(SingleInstanceTest, answersOnlyWhatItUnderstands) {
    ASSERT_EQ(first_.claim("", 0ms), Claim::first);
    serve();
    for (const std::string& bytes : {std::string("quit now\n"), std::string("\n"), std::string(100'000, 'x'),
                                     std::string("open\nopen \n"), std::string(3, '\0') + "\n"}) {
        const int fd = visit();
        ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        EXPECT_TRUE(isHungUpOn(fd)) << bytes.substr(0, 10);
        ::close(fd);
    }
    EXPECT_TRUE(tokens_.empty());
    EXPECT_EQ(quits_, 0);
    // Many that say nothing keep nobody from being heard.
    std::vector<int> silent;
    for (int i = 0; i < 12; ++i) silent.push_back(visit());
    EXPECT_EQ(startLater("x"), Claim::told);
    EXPECT_TRUE(isHungUpOn(silent.front()));
    for (const int fd : silent) ::close(fd);
    EXPECT_EQ(startLater("y"), Claim::told);
    EXPECT_EQ(tokens_, (std::vector<std::string>{"x", "y"}));
}

TEST_F(SingleInstanceTest, handsOverAndTakesBack) {
    ASSERT_EQ(first_.claim("", 0ms), Claim::first);
    serve();
    first_.release();
    EXPECT_FALSE(first_.isTaken());
    {
        SingleInstance next(folder_.path());
        EXPECT_EQ(next.claim("", 0ms), Claim::first);
        EXPECT_TRUE(first_.isTaken());
        first_.reclaim();
        EXPECT_TRUE(first_.isTaken()) << "it is the other's";
    }
    first_.reclaim();
    EXPECT_EQ(startLater("again"), Claim::told);
    EXPECT_EQ(tokens_, std::vector<std::string>{"again"});
}

TEST_F(SingleInstanceTest, isFoundHoweverOftenTheLockIsLookedAt) {
    std::atomic<bool> isOver = false;
    // As one that hands over looks whether the other has taken over.
    std::thread looker([&] {
        const SingleInstance mover(folder_.path());
        while (!isOver) (void)mover.isTaken();
    });
    for (int i = 0; i < 2000; ++i) {
        SingleInstance next(folder_.path());
        EXPECT_EQ(next.claim("", 20s), Claim::first);
    }
    isOver = true;
    looker.join();
}

TEST_F(SingleInstanceTest, isNotKnownWithoutAFolder) {
    SingleInstance nowhere(std::nullopt);
    EXPECT_EQ(nowhere.claim("", 0ms), Claim::unavailable);
    SingleInstance absent(folder_ / "absent");
    EXPECT_EQ(absent.claim("", 0ms), Claim::unavailable);
    const auto deep = folder_ / std::string(120, 'x');
    fs::create_directory(deep);
    EXPECT_EQ(SingleInstance(deep).claim("", 0ms), Claim::unavailable) << "no socket has so long an address";
}

TEST(RuntimeFolder, isOneThatNobodyElseMayWriteTo) {
    const test::TemporaryFolder folder;
    const auto own = folder / "own";
    fs::create_directory(own);
    fs::permissions(own, fs::perms::owner_all);
    const auto fallback = folder / ("orbinex-" + std::to_string(::geteuid()));
    EXPECT_EQ(privateRuntimeFolder(own, folder.path()), own);
    EXPECT_FALSE(fs::exists(fallback));

    for (const auto& strange : {std::string(), std::string("relative"), folder / "absent"})
        EXPECT_EQ(privateRuntimeFolder(strange, folder.path()), fallback) << strange;
    struct stat about {};
    ASSERT_EQ(::stat(fallback.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777U, 0700U);
    fs::permissions(own, fs::perms::all);
    EXPECT_EQ(privateRuntimeFolder(own, folder.path()), fallback);

    // Somebody was there first.
    fs::permissions(fallback, fs::perms::all);
    EXPECT_EQ(privateRuntimeFolder("", folder.path()), std::nullopt);
    fs::remove(fallback);
    fs::create_directory_symlink(own, fallback);
    EXPECT_EQ(privateRuntimeFolder("", folder.path()), std::nullopt);
    EXPECT_EQ(privateRuntimeFolder("", folder / "absent"), std::nullopt);
    if (::geteuid() == 0) {
        fs::remove(fallback);
        fs::create_directory(fallback);
        fs::permissions(fallback, fs::perms::owner_all);
        ASSERT_EQ(::chown(fallback.c_str(), 65534, 65534), 0);
        EXPECT_EQ(privateRuntimeFolder("", folder.path()), std::nullopt);
    }
}

}  // namespace
}  // namespace orbinex
