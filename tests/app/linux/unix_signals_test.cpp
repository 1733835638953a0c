#include "app/linux/unix_signals.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <csignal>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(UnixSignals, arriveOnTheMainThreadAndAreGivenBack) {
    struct sigaction before {};
    sigaction(SIGHUP, nullptr, &before);
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
    struct sigaction after {};
    sigaction(SIGHUP, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
}

}  // namespace
}  // namespace orbinex
