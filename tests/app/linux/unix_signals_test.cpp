#include "app/linux/unix_signals.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <csignal>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(UnixSignals, arriveOnTheMainThreadAndAreGivenBack) {
    // Whatever the test itself was started with.
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) std::signal(number, SIG_DFL);
    std::vector<int> seen;
    QEventLoop loop;
    {
        const UnixSignals signals([&](int number) {
            seen.push_back(number);
            if (seen.size() == 3) loop.quit();
        });
        for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
            raise(number);
            EXPECT_TRUE(seen.empty()) << "nothing runs in the handler";
        }
        loop.exec();
    }
    EXPECT_EQ(seen, (std::vector{SIGTERM, SIGHUP, SIGINT}));
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) EXPECT_EQ(std::signal(number, SIG_DFL), SIG_DFL);
}

TEST(UnixSignals, stayIgnoredWhereTheProgramWasStartedSo) {
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGTERM, SIG_DFL);
    std::vector<int> seen;
    QEventLoop loop;
    {
        const UnixSignals signals([&](int number) {
            seen.push_back(number);
            loop.quit();
        });
        raise(SIGHUP);
        raise(SIGTERM);
        loop.exec();
    }
    EXPECT_EQ(seen, std::vector{SIGTERM});
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

}  // namespace
}  // namespace orbinex
