#include "audio/background/media_threads.h"

#include <atomic>
#include <future>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/background/manual_media_workers.h"
#include "audio/background/patience.h"
#include "audio/background/wait_allowance.h"

namespace orbinex {

namespace {

using namespace std::chrono_literals;

class FunctionTask final : public MediaTask {
  public:
    explicit FunctionTask(std::function<bool()> function) : function_(std::move(function)) {}
    bool run() override { return function_(); }

  private:
    std::function<bool()> function_;
};

std::shared_ptr<MediaTask> task(std::function<bool()> function) {
    return std::make_shared<FunctionTask>(std::move(function));
}

/// Waits for a promise that a task keeps. The limit is for a test that fails.
void expectKept(std::future<void>& future) {
    ASSERT_EQ(future.wait_for(30s), std::future_status::ready);
}

/// A task that hangs until the gate is opened.
class Gate {
  public:
    std::shared_ptr<MediaTask> hangingTask() {
        return task([this, isOpen = isOpen_.get_future().share()] {
            entered_.set_value();
            isOpen.wait();
            left_.set_value();
            return false;
        });
    }
    void awaitEntry() {
        auto future = entered_.get_future();
        expectKept(future);
    }
    void open() { isOpen_.set_value(); }
    void awaitExit() {
        auto future = left_.get_future();
        expectKept(future);
    }

  private:
    std::promise<void> isOpen_;
    std::promise<void> entered_;
    std::promise<void> left_;
};

struct ManualClock {
    std::atomic<std::int64_t> nanoseconds{1'000'000'000};

    MediaThreads::Clock clock() {
        return [this] { return std::chrono::nanoseconds(nanoseconds); };
    }
    void pass(std::chrono::nanoseconds time) { nanoseconds += time.count(); }
};

TEST(MediaTaskQueue, takesUrgentTasksFirstAndEachOnce) {
    test::ManualMediaWorkers workers;
    std::string order;
    const auto letter = [&](char c, int steps = 1) {
        return task([&order, c, left = steps]() mutable {
            order += c;
            return --left > 0;
        });
    };
    const auto b = letter('b');
    const auto e = letter('e');
    workers.post(letter('a', 3), Urgency::ordinary);
    workers.post(b, Urgency::ordinary);
    workers.post(letter('c'), Urgency::urgent);
    workers.post(letter('d'), Urgency::urgent);
    workers.post(e, Urgency::ordinary);
    workers.post(b, Urgency::ordinary);
    workers.post(e, Urgency::urgent);
    workers.post(e, Urgency::urgent);
    workers.runAll();
    EXPECT_EQ(order, "cdeabaa");
}

TEST(MediaTaskQueue, runsATaskAgainThatIsPostedWhileItRuns) {
    test::ManualMediaWorkers workers;
    int runs = 0;
    std::shared_ptr<MediaTask> self;
    self = task([&] {
        if (++runs < 3) workers.post(self, Urgency::urgent);
        return false;
    });
    workers.post(self, Urgency::ordinary);
    workers.runAll();
    EXPECT_EQ(runs, 3);
    self.reset();
}

TEST(MediaThreads, runTasksOnThreadsOfTheirOwn) {
    const MediaThreads threads;
    const auto workers = threads.workers();
    EXPECT_FALSE(workers->isWorkerThread());
    std::promise<void> done;
    workers->post(task([&] {
                      EXPECT_TRUE(workers->isWorkerThread());
                      EXPECT_FALSE(workers->waitFor([] { return false; })) << "it would wait for itself";
                      done.set_value();
                      return false;
                  }),
                  Urgency::ordinary);
    auto future = done.get_future();
    expectKept(future);
}

TEST(MediaThreads, letOthersTakeOverFromOneThatHangs) {
    ManualClock time;
    Gate first;
    Gate second;
    const MediaThreads threads({}, time.clock());
    const auto workers = threads.workers();
    workers->post(first.hangingTask(), Urgency::ordinary);
    first.awaitEntry();
    std::promise<void> done;
    workers->post(second.hangingTask(), Urgency::ordinary);
    workers->post(task([&] {
                      done.set_value();
                      return false;
                  }),
                  Urgency::ordinary);
    auto future = done.get_future();
    // Whoever waits notices.
    time.pass(101ms);
    workers->waitFor([] { return false; });
    second.awaitEntry();
    EXPECT_NE(future.wait_for(0s), std::future_status::ready);
    time.pass(101ms);
    workers->waitFor([] { return false; });
    expectKept(future);
    first.open();
    second.open();
    first.awaitExit();
    second.awaitExit();
}

TEST(MediaThreads, areNoMoreThanAllowedHoweverManyHang) {
    ManualClock time;
    Gate gates[2];
    const MediaThreads threads({100ms, 2, 1s}, time.clock());
    const auto workers = threads.workers();
    for (auto& gate : gates) {
        workers->post(gate.hangingTask(), Urgency::ordinary);
        gate.awaitEntry();
        time.pass(101ms);
    }
    std::promise<void> done;
    auto future = done.get_future();
    workers->post(task([&] {
                      done.set_value();
                      return false;
                  }),
                  Urgency::urgent);
    EXPECT_FALSE(workers->waitFor([&] { return future.wait_for(0s) == std::future_status::ready; }));
    gates[1].open();
    expectKept(future);
    gates[0].open();
}

TEST(MediaThreads, neverRunOneTaskTwiceAtATime) {
    ManualClock time;
    Gate gate;
    const MediaThreads threads({}, time.clock());
    const auto workers = threads.workers();
    // A second run of it would keep its promise again, and throw.
    const auto hanging = gate.hangingTask();
    workers->post(hanging, Urgency::ordinary);
    gate.awaitEntry();
    time.pass(1s);
    workers->post(hanging, Urgency::urgent);
    std::promise<void> done;
    workers->post(task([&] {
                      done.set_value();
                      return false;
                  }),
                  Urgency::ordinary);
    auto future = done.get_future();
    expectKept(future);
    gate.open();
    gate.awaitExit();
}

TEST(MediaThreads, leaveBehindAThreadThatHangsWithWhatItHolds) {
    Gate gate;
    auto resource = std::make_shared<std::promise<void>>();
    auto released = resource->get_future();
    {
        const MediaThreads threads({100ms, 4, 0s},
                                   [] { return std::chrono::steady_clock::now().time_since_epoch(); });
        const auto hanging = gate.hangingTask();
        threads.workers()->post(task([hanging, resource] {
                                    hanging->run();
                                    resource->set_value();
                                    return false;
                                }),
                                Urgency::ordinary);
        gate.awaitEntry();
    }
    EXPECT_NE(released.wait_for(0s), std::future_status::ready);
    EXPECT_GT(resource.use_count(), 1);
    gate.open();
    expectKept(released);
}

TEST(MediaThreads, letGoOfWhatIsLeftWhenTheyEnd) {
    auto resource = std::make_shared<int>(0);
    std::shared_ptr<MediaWorkers> workers;
    {
        Gate gate;
        const MediaThreads threads;
        workers = threads.workers();
        workers->post(gate.hangingTask(), Urgency::ordinary);
        gate.awaitEntry();
        for (int i = 0; i < 10; ++i) workers->post(task([resource] { return true; }), Urgency::ordinary);
        gate.open();
        gate.awaitExit();
    }
    EXPECT_EQ(resource.use_count(), 1);
    workers->post(task([resource] { return true; }), Urgency::ordinary);
    EXPECT_EQ(resource.use_count(), 1);
    int looks = 0;
    EXPECT_FALSE(workers->waitFor([&] { return ++looks > 1; })) << "nobody is left to wait for";
}

TEST(MediaThreads, waitForWhatIsDoneInTime) {
    const MediaThreads threads;
    const auto workers = threads.workers();
    std::atomic<bool> isDone = false;
    // Waits may be too short on a busy machine; what is done ends them, or the next one.
    workers->post(task([&] {
                      isDone = true;
                      return false;
                  }),
                  Urgency::urgent);
    const test::Patience patience;
    while (!workers->waitFor([&] { return isDone.load(); })) ASSERT_TRUE(patience.isLeft());
    EXPECT_TRUE(workers->waitFor([] { return true; }));
}

TEST(MediaThreads, surviveATaskThatThrows) {
    const MediaThreads threads;
    std::promise<void> done;
    threads.workers()->post(task([]() -> bool { throw std::bad_alloc(); }), Urgency::ordinary);
    threads.workers()->post(task([&] {
                                done.set_value();
                                return false;
                            }),
                            Urgency::ordinary);
    auto future = done.get_future();
    expectKept(future);
}

TEST(WaitAllowance, makesUpForALongWait) {
    WaitAllowance allowance;
    std::chrono::nanoseconds now = 5h;
    allowance.available(now);
    allowance.spend(100ms);
    int ticks = 0;
    while (allowance.available(now += 66ms) < WaitAllowance::mostAtATime && ticks < 1000) ++ticks;
    EXPECT_EQ(ticks, 11) << "92 ms of debt and 2 to wait, at 8 a tick";
}

}  // namespace

}  // namespace orbinex
