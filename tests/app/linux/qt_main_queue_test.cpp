#include "app/linux/qt_main_queue.h"

#include <QEventLoop>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "app/linux/core_application.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

/// Runs the event loop until the queue is told to stop it.
class QtMainQueueTest : public testing::Test {
  protected:
    void runUntilDone() { loop_.exec(); }
    void done() { loop_.quit(); }

    QCoreApplication& application_ = coreApplication();
    QEventLoop loop_;
    QtMainQueue queue_;
};

TEST_F(QtMainQueueTest, runsPostedJobsFromAnyThreadInEachThreadsOrderOnThisOne) {
    constexpr int threads = 4;
    constexpr int jobs = 500;
    const auto mainThread = std::this_thread::get_id();
    std::vector<std::vector<int>> seen(threads);
    int left = threads * jobs;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            for (int i = 0; i < jobs; ++i) {
                queue_.post([&, t, i] {
                    EXPECT_EQ(std::this_thread::get_id(), mainThread);
                    seen[static_cast<std::size_t>(t)].push_back(i);
                    if (--left == 0) done();
                });
            }
        });
    }
    runUntilDone();
    for (auto& worker : workers) worker.join();
    for (const auto& order : seen) {
        ASSERT_EQ(order.size(), static_cast<std::size_t>(jobs));
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST_F(QtMainQueueTest, runsTimersNeverEarlyAndInOrder) {
    const auto start = queue_.uptime();
    std::vector<int> order;
    const Timer late = queue_.after(30ms, [&] {
        EXPECT_GE(queue_.uptime() - start, 30ms);
        order.push_back(3);
        done();
    });
    const Timer soon = queue_.after(5ms, [&] {
        EXPECT_GE(queue_.uptime() - start, 5ms);
        order.push_back(2);
    });
    const Timer atOnce = queue_.after(-1s, [&] { order.push_back(1); });
    EXPECT_TRUE(late.isActive());
    runUntilDone();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
    EXPECT_FALSE(soon.isActive());
}

TEST_F(QtMainQueueTest, neverRunsWhatWasCancelledOrReArmed) {
    int old = 0;
    int rounds = 0;
    Timer timer = queue_.after(1ms, [&] { ++old; });
    timer = queue_.after(2ms, [] {});
    Timer cancelled = queue_.after(1ms, [&] { ++old; });
    cancelled.cancel();
    Timer repeated;
    repeated = queue_.every(1ms, [&, keep = std::string(100, 'x')] {
        if (++rounds < 3) return;
        repeated.cancel();
        EXPECT_EQ(keep.size(), 100u) << "the job outlives its timer while it runs";
    });
    const Timer end = queue_.after(30ms, [this] { done(); });
    runUntilDone();
    EXPECT_EQ(old, 0);
    EXPECT_EQ(rounds, 3);
}

TEST_F(QtMainQueueTest, keepsATimerWhenAnEarlierOneThatIsOverGoes) {
    Timer over;
    Timer later;
    over = queue_.after(1ms, [&] {
        // The event loop may number this one as it did the one that is over.
        later = queue_.after(1ms, [this] { done(); });
        over.cancel();
    });
    runUntilDone();
}

TEST_F(QtMainQueueTest, mayGoBeforeItsTimersAndItsJobs) {
    Timer survivor;
    {
        QtMainQueue gone;
        survivor = gone.after(1ms, [] { FAIL(); });
        gone.post([] { FAIL(); });
    }
    EXPECT_FALSE(survivor.isActive());
    const Timer end = queue_.after(10ms, [this] { done(); });
    runUntilDone();
}

TEST_F(QtMainQueueTest, mayGoInOneOfItsPostedJobs) {
    auto gone = std::make_unique<QtMainQueue>();
    bool hasRun = false;
    gone->post([&, keep = std::string(100, 'x')] {
        gone.reset();
        hasRun = true;
        EXPECT_EQ(keep.size(), 100u) << "the job outlives its queue while it runs";
    });
    gone->post([] { FAIL(); });
    const Timer end = queue_.after(10ms, [this] { done(); });
    runUntilDone();
    EXPECT_TRUE(hasRun);
}

TEST_F(QtMainQueueTest, runsTheJobsAfterOneThatWaitsForThemInALoopOfItsOwn) {
    std::vector<int> order;
    queue_.post([&] {
        QEventLoop inner;
        queue_.post([&] {
            order.push_back(2);
            inner.quit();
        });
        inner.exec();
        order.push_back(3);
        done();
    });
    queue_.post([&] { order.push_back(1); });
    runUntilDone();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(QtMainQueueTest, letsTimersRunBesideAJobThatPostsItselfForEver) {
    std::function<void()> again = [&] { queue_.post(again); };
    again();
    const Timer end = queue_.after(5ms, [this] { done(); });
    runUntilDone();
}

}  // namespace
}  // namespace orbinex
