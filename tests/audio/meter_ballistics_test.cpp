#include "audio/meter_ballistics.h"

#include <cmath>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

using namespace std::chrono_literals;

double magnitudeOf(double dB) {
    return std::pow(10, dB / 20);
}

TEST(MeterBallistics, riseAtOnceAndFallStepByStep) {
    BallisticsState state;
    auto now = BallisticsState::Uptime(1h);
    state.hear(magnitudeOf(-10), magnitudeOf(-13), now);
    EXPECT_NEAR(state.smoothedPeakDBFS, -10, 1e-9);
    EXPECT_NEAR(state.smoothedRMSDBFS, -13, 1e-9);
    for (int i = 1; i <= 5; ++i) {
        state.hear(magnitudeOf(-60), magnitudeOf(-63), now += 66ms);
        EXPECT_NEAR(state.smoothedPeakDBFS, -10 - 1.72 * i, 1e-9);
        EXPECT_NEAR(state.smoothedRMSDBFS, -13 - 1.45 * i, 1e-9);
    }
    // Not below what there is, and up again at once.
    state.hear(magnitudeOf(-19), magnitudeOf(-20.5), now += 66ms);
    EXPECT_NEAR(state.smoothedPeakDBFS, -19, 1e-9);
    state.hear(magnitudeOf(-5), magnitudeOf(-8), now += 66ms);
    EXPECT_NEAR(state.smoothedPeakDBFS, -5, 1e-9);
    EXPECT_NEAR(state.smoothedRMSDBFS, -8, 1e-9);
}

TEST(MeterBallistics, holdThePeakFor1200msAndLetItFall) {
    BallisticsState state;
    const auto raised = BallisticsState::Uptime(1h);
    state.hear(1, 1, raised);
    state.hear(magnitudeOf(-100), magnitudeOf(-100), raised + 1200ms);
    EXPECT_EQ(state.peakHoldDBFS, 0) << "not yet longer than 1.2 s";
    double peak = -1.72;
    for (int i = 1; i <= 10; ++i) {
        state.hear(magnitudeOf(-100), magnitudeOf(-100), raised + 1200ms + i * 66ms);
        peak -= 1.72;
        EXPECT_NEAR(state.smoothedPeakDBFS, peak, 1e-9);
        EXPECT_NEAR(state.peakHoldDBFS, -1.58 * i, 1e-9);
        EXPECT_EQ(state.peakHoldTime, raised);
    }
    // The peak catches it and holds again.
    state.hear(magnitudeOf(-12), 0.1, raised + 5s);
    EXPECT_NEAR(state.peakHoldDBFS, -12, 1e-9);
    EXPECT_EQ(state.peakHoldTime, raised + 5s);
}

TEST(MeterBallistics, dropToTheFloorInSilence) {
    BallisticsState state;
    const auto raised = BallisticsState::Uptime(1h);
    state.hear(1, 1, raised);
    state.fallSilent(raised + 1200ms);
    EXPECT_EQ(state.smoothedPeakDBFS, -288);
    EXPECT_EQ(state.smoothedRMSDBFS, -288);
    EXPECT_EQ(state.peakHoldDBFS, 0);
    state.fallSilent(raised + 1201ms);
    EXPECT_EQ(state.peakHoldDBFS, -288);
    EXPECT_EQ(state.peakHoldTime, raised);
}

TEST(MeterBallistics, lightTheClipIndicatorFromMinus005dBOnFor2s) {
    const auto at = BallisticsState::Uptime(1h);
    for (const auto& [dB, clips] : {std::pair(-0.06, false), {-0.04, true}, {0.0, true}, {6.0, true}}) {
        BallisticsState state;
        state.hear(magnitudeOf(dB), 0.1, at);
        const auto isOn = [&](auto after) {
            return state.meter(1, TrackMeterStatus::activeSignal, at + after).isClipping;
        };
        EXPECT_EQ(isOn(0ms), clips) << dB;
        EXPECT_EQ(isOn(1999ms), clips) << dB;
        EXPECT_FALSE(isOn(2000ms)) << dB;
        EXPECT_LE(state.smoothedPeakDBFS, 0);
    }
}

TEST(LinearToDBFS, isLimitedToTheScale) {
    const struct {
        double magnitude, dB;
    } rows[] = {{1, 0},     {0.5, -6.020599913279624},     {2, 0},     {1e-14, -280},
                {0, -288},  {3.981071705534969e-15, -288}, {-1, -288}, {INFINITY, -288},
                {NAN, -288}};
    for (const auto& row : rows) EXPECT_NEAR(linearToDBFS(row.magnitude), row.dB, 1e-9) << row.magnitude;
}

}  // namespace
}  // namespace orbinex
