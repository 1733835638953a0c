#include "input/uinput/fine_wheel.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {

std::ostream& operator<<(std::ostream& out, const WheelMotion& motion) {
    return out << motion.steps << " steps, " << motion.clicks << " clicks";
}

namespace {

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();

TEST(FineWheel, turnsPixelsIntoStepsAndTheClicksThatTheyComplete) {
    const struct {
        const char* name;
        std::vector<std::int32_t> pixels;
        std::vector<WheelMotion> motions;
    } rows[] = {
        {"a click", {50}, {{120, 1}}},
        {"a click the other way", {-50}, {{-120, -1}}},
        {"a pixel is 2.4 steps", {1, 1, 1, 1, 1}, {{2, 0}, {2, 0}, {3, 0}, {2, 0}, {3, 0}}},
        {"the same the other way", {-1, -1, -1, -1, -1}, {{-2, 0}, {-2, 0}, {-3, 0}, {-2, 0}, {-3, 0}}},
        {"a click in two halves", {25, 25, 25}, {{60, 0}, {60, 1}, {60, 0}}},
        {"what is beyond a click counts for the next", {40, 40, 20}, {{96, 0}, {96, 1}, {48, 1}}},
        {"turning back undoes what was turned", {40, -40, -49, -1}, {{96, 0}, {-96, 0}, {-117, 0}, {-3, -1}}},
        {"turning back within a step", {1, -1, -1}, {{2, 0}, {-2, 0}, {-2, 0}}},
        {"nothing", {0, 1, 0}, {{0, 0}, {2, 0}, {0, 0}}},
        {"a strong flick", {500, 501}, {{1200, 10}, {1200, 10}}},
        {"no more than that, and the fraction stays", {largest, 1}, {{1200, 10}, {3, 0}}},
        {"nor the other way", {smallest, smallest}, {{-1200, -10}, {-1200, -10}}},
    };
    for (const auto& row : rows) {
        FineWheel wheel;
        std::vector<WheelMotion> motions;
        for (const std::int32_t pixels : row.pixels) motions.push_back(wheel.add(pixels));
        EXPECT_EQ(motions, row.motions) << row.name;
    }
}

TEST(FineWheel, scrollsAsFarAsWheelClicksDoAndDriftsNowhere) {
    FineWheel wheel;
    WheelClicks clicks;
    std::int64_t pixels = 0;
    std::int64_t steps = 0;
    std::int64_t wheelClicks = 0;
    std::int64_t plainClicks = 0;
    std::uint32_t random = 1;
    for (int i = 0; i < 100'000; ++i) {
        random = random * 1664525U + 1013904223U;
        const auto amount = static_cast<std::int32_t>(random >> 16U) % 401 - 180;
        const WheelMotion motion = wheel.add(amount);
        pixels += amount;
        steps += motion.steps;
        wheelClicks += motion.clicks;
        plainClicks += clicks.add(amount);
        ASSERT_LT(std::abs(pixels * 120 - steps * 50), 50) << "more than a step behind after " << i;
        ASSERT_LT(std::abs(steps - wheelClicks * 120), 120) << "more than a click behind after " << i;
        ASSERT_LE(std::abs(wheelClicks - plainClicks), 1);
    }
}

}  // namespace
}  // namespace orbinex
