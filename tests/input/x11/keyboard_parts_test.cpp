#include <algorithm>
#include <set>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include "input/candidate_keycodes.h"
#include "input/x11/click_run.h"
#include "input/x11/mac_keycodes.h"
#include "input/x11/spare_key_pool.h"

namespace orbinex {
namespace {

using std::chrono::milliseconds;

/// Where the number pad, the arrows and the keys around them lie, by their numbers in the kernel.
TEST(MacKeycodes, leadToTheKeysThatDoTheSame) {
    const std::pair<std::uint16_t, int> rows[] = {
        {36, KEY_ENTER},      {48, KEY_TAB},        {51, KEY_BACKSPACE}, {53, KEY_ESC},
        {65, KEY_KPDOT},      {67, KEY_KPASTERISK}, {69, KEY_KPPLUS},    {75, KEY_KPSLASH},
        {76, KEY_KPENTER},    {78, KEY_KPMINUS},    {82, KEY_KP0},       {83, KEY_KP1},
        {84, KEY_KP2},        {85, KEY_KP3},        {86, KEY_KP4},       {87, KEY_KP5},
        {88, KEY_KP6},        {89, KEY_KP7},        {91, KEY_KP8},       {92, KEY_KP9},
        {115, KEY_HOME},      {116, KEY_PAGEUP},    {117, KEY_DELETE},   {119, KEY_END},
        {121, KEY_PAGEDOWN},  {123, KEY_LEFT},      {124, KEY_RIGHT},    {125, KEY_DOWN},
        {126, KEY_UP},        {122, KEY_F1},        {111, KEY_F12},      {72, KEY_VOLUMEUP},
        {73, KEY_VOLUMEDOWN}, {74, KEY_MUTE},       {57, KEY_CAPSLOCK},
    };
    for (const auto& [code, number] : rows) {
        const auto key = pcKey(code);
        ASSERT_TRUE(key) << code;
        EXPECT_EQ(key->evdevCode, number) << code;
    }
}

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
