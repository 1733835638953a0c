#include "editor_bridge/fader_law.h"

#include <limits>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(FaderLaw, goesThroughItsPoints) {
    const std::pair<double, double> rows[] = {
        {12, 1}, {6, 0.89}, {0, 0.78}, {-6, 0.28 + 0.5 * 30 / 36}, {-36, 0.28}, {-66, 0.14}, {-96, 0},
    };
    for (const auto& [dB, position] : rows) {
        EXPECT_NEAR(faderDBToScalar(dB), position, 1e-12) << dB;
        EXPECT_EQ(faderScalarToDB(position), dB) << position;
    }
}

TEST(FaderLaw, hasEndsAndACatchAtUnity) {
    for (const double dB : {-96.1, -infinity, infinity, notANumber}) EXPECT_EQ(faderDBToScalar(dB), 0) << dB;
    EXPECT_EQ(faderDBToScalar(40), 1);
    for (const double position : {-0.1, -infinity, infinity, notANumber}) {
        EXPECT_EQ(faderScalarToDB(position), -96) << position;
    }
    EXPECT_EQ(faderScalarToDB(1.5), 12);
    EXPECT_EQ(faderScalarToDB(faderDBToScalar(0.17)), 0);
    EXPECT_EQ(faderScalarToDB(faderDBToScalar(-0.17)), 0);
    EXPECT_EQ(faderScalarToDB(faderDBToScalar(0.19)), 0.2);
    EXPECT_EQ(clampedFaderDB(infinity), -96);
    EXPECT_EQ(clampedFaderDB(13), 12);
    EXPECT_EQ(clampedPan(-infinity), -100);
    EXPECT_EQ(clampedLevelerDB(notANumber), 0);
}

}  // namespace
}  // namespace orbinex
