#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "input/candidate_keycodes.h"
#include "input/x11/click_run.h"
#include "input/x11/mac_keycodes.h"
#include "input/x11/spare_key_pool.h"

namespace orbinex {
namespace {

using std::chrono::milliseconds;

TEST(MacKeycodes, everyPlaceIsTakenOnce) {
    std::set<std::string_view> names;
    std::set<int> numbers;
    int places = 0;
    for (std::uint16_t code = 0; code < 300; ++code) {
        const auto key = pcKey(code);
        // Enter of small keyboards is the number pad's.
        if (!key || code == 52) continue;
        ++places;
        names.insert(key->xkbName);
        numbers.insert(key->evdevCode);
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(places));
    EXPECT_EQ(numbers.size(), static_cast<std::size_t>(places));
    EXPECT_TRUE(std::ranges::all_of(candidateKeycodes, [](auto code) { return pcKey(code).has_value(); }));
}

TEST(SpareKeyPool, lendsTheLongestRestingKeyAndKeepsItForTheSafeTime) {
    SpareKeyPool pool;
    EXPECT_FALSE(pool.lend('x', milliseconds(0)));
    EXPECT_FALSE(pool.nextFree());
    pool.setKeycodes(std::vector<XKeycode>{200, 201});

    const auto lend = [&](XKeysym keysym, int when) {
        const auto loan = pool.lend(keysym, milliseconds(when));
        return loan ? std::pair(int{loan->keycode}, loan->needsMapping) : std::pair(0, false);
    };
    EXPECT_EQ(lend('a', 0), std::pair(200, true));
    EXPECT_EQ(lend('b', 10), std::pair(201, true));
    EXPECT_EQ(lend('c', 99), std::pair(0, false));
    EXPECT_EQ(pool.nextFree(), milliseconds(100));
    EXPECT_EQ(lend('a', 99), std::pair(200, false));
    EXPECT_EQ(pool.nextFree(), milliseconds(110));
    EXPECT_EQ(lend('c', 110), std::pair(201, true));

    // What is gone is forgotten, what stays keeps its loan, what is new has none.
    pool.setKeycodes(std::vector<XKeycode>{201, 202});
    EXPECT_EQ(lend('c', 111), std::pair(201, false));
    EXPECT_EQ(lend('a', 111), std::pair(202, true));
    pool.forget(202);
    std::vector<int> given;
    pool.endLoans([&](XKeycode keycode) { given.push_back(keycode); });
    EXPECT_EQ(given, std::vector<int>{201});
    EXPECT_EQ(lend('c', 112), std::pair(0, false));
}

TEST(ClickRun, asksForTheClicksThatClientsHaveNotSeen) {
    const auto left = MouseButton::left;
    ClickRun run;
    EXPECT_EQ(run.missingClicks(left, 3, {10, 10}, milliseconds(0)), 2);
    EXPECT_EQ(run.missingClicks(left, 1, {10, 10}, milliseconds(10)), 0);
    // Within the reach and the time, and just beyond either.
    EXPECT_EQ(run.missingClicks(left, 2, {15, 5}, milliseconds(360)), 0);
    EXPECT_EQ(run.missingClicks(left, 3, {21, 5}, milliseconds(370)), 2);
    EXPECT_EQ(run.missingClicks(left, 1, {21, 5}, milliseconds(380)), 0);
    EXPECT_EQ(run.missingClicks(left, 2, {21, 5}, milliseconds(731)), 1);
    EXPECT_EQ(run.missingClicks(MouseButton::right, 3, {21, 5}, milliseconds(732)), 2);
    // Out of range.
    EXPECT_EQ(run.missingClicks(left, INT64_MAX, {0, 0}, milliseconds(2000)), 2);
    EXPECT_EQ(run.missingClicks(left, INT64_MIN, {0, 0}, milliseconds(4000)), 0);
}

}  // namespace
}  // namespace orbinex
