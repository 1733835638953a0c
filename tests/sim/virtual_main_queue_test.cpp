#include "sim/virtual_main_queue.h"

#include <string>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

using namespace std::chrono_literals;

TEST(VirtualMainQueue, runsJobsAtTheirMomentsAndInTheirOrder) {
    VirtualMainQueue queue;
    std::string order;
    const auto note = [&](const char* what) {
        return [&, what] { order += what + std::to_string(queue.uptime() / 1ms) + " "; };
    };
    const Timer late = queue.after(20ms, note("late"));
    const Timer first = queue.after(10ms, note("a"));
    const Timer second = queue.after(10ms, note("b"));
    const Timer every = queue.every(8ms, note("e"));
    queue.post(note("posted"));
    queue.advance(17ms);
    EXPECT_EQ(order, "posted0 e8 a10 b10 e16 ");
    EXPECT_TRUE(late.isActive());
    EXPECT_FALSE(first.isActive());
    queue.advance(3ms);
    EXPECT_EQ(order, "posted0 e8 a10 b10 e16 late20 ");
    EXPECT_NEAR((queue.now() - Date(Seconds(800'000'000.0))).count(), 0.020, 1e-6);
}

TEST(VirtualMainQueue, neverRunsWhatWasCancelledOrReArmed) {
    VirtualMainQueue queue;
    int old = 0;
    int fresh = 0;
    Timer timer = queue.after(10ms, [&] { ++old; });
    timer = queue.after(10ms, [&] { ++fresh; });
    Timer cancelled = queue.after(10ms, [&] { ++old; });
    Timer canceller = queue.after(5ms, [&] { cancelled.cancel(); });
    Timer selfDestroying;
    selfDestroying = queue.every(5ms, [&, keep = std::string(100, 'x')] {
        selfDestroying.cancel();
        fresh += static_cast<int>(keep.size());
    });
    queue.advance(1s);
    EXPECT_EQ(old, 0);
    EXPECT_EQ(fresh, 101);
    EXPECT_EQ(queue.pendingTimers(), 0u);
}

TEST(VirtualMainQueue, mayGoBeforeItsTimers) {
    Timer survivor;
    {
        VirtualMainQueue queue;
        survivor = queue.after(1s, [] { FAIL(); });
        EXPECT_TRUE(survivor.isActive());
    }
    EXPECT_FALSE(survivor.isActive());
}

}  // namespace
}  // namespace orbinex
