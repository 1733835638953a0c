#include "audio/meter_ballistics.h"

#include <algorithm>

namespace orbinex {

namespace {

using namespace std::chrono_literals;

// dB a step.
constexpr double peakRelease = 1.72;
constexpr double rmsRelease = 1.45;
constexpr double holdRelease = 1.58;

constexpr BallisticsState::Uptime holdTime = 1200ms;
constexpr double clipThresholdDBFS = -0.05;
constexpr BallisticsState::Uptime clipTime = 2s;

}  // namespace

void BallisticsState::hear(double peakLinear, double rmsLinear, Uptime now) {
    const double peakDB = linearToDBFS(peakLinear);
    smoothedPeakDBFS = std::max(peakDB, smoothedPeakDBFS - peakRelease);
    smoothedRMSDBFS = std::max(linearToDBFS(rmsLinear), smoothedRMSDBFS - rmsRelease);
    if (peakHoldDBFS <= smoothedPeakDBFS) {
        peakHoldDBFS = smoothedPeakDBFS;
        peakHoldTime = now;
    } else if (now - peakHoldTime > holdTime) {
        peakHoldDBFS = std::max(smoothedPeakDBFS, peakHoldDBFS - holdRelease);
    }
    if (peakDB >= clipThresholdDBFS) clipHoldUntil = now + clipTime;
}

void BallisticsState::fallSilent(Uptime now) {
    smoothedPeakDBFS = silenceDBFS;
    smoothedRMSDBFS = silenceDBFS;
    if (now - peakHoldTime > holdTime) peakHoldDBFS = silenceDBFS;
}

}  // namespace orbinex
