#include "input/clamp_to_displays.h"

#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(ClampToDisplays, takesTheNearestPointOfTheNearestDisplayAndTheFirstOfTwoEqual) {
    const Rect main{0, 0, 100, 100};
    const std::vector<Rect> apart{{0, 0, 100, 100}, {200, 0, 100, 100}};
    const std::vector<Rect> left{{-50, 0, 50, 100}, {0, 0, 100, 100}};
    struct Case {
        std::vector<Rect> displays;
        Point point;
        Point expected;
    };
    const std::vector<Case> cases{
        {apart, {50, 50}, {50, 50}},
        {apart, {99.75, 50}, {99.75, 50}},
        {apart, {100, 50}, {99, 50}},
        {apart, {299.5, 99.5}, {299.5, 99.5}},
        {apart, {1000, 1000}, {299, 99}},
        {apart, {160, 50}, {200, 50}},
        // Halfway between 99 and 200.
        {apart, {149.5, 50}, {99, 50}},
        {left, {-1e300, 1e300}, {-50, 99}},
        {left, {-0.5, 0}, {-0.5, 0}},
        {{}, {99.75, -3}, {99, 0}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(clampToDisplays(c.point, c.displays, main), c.expected) << c.point.x << "," << c.point.y;
    }
}

}  // namespace
}  // namespace orbinex
