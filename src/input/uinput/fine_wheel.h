#pragma once

#include <algorithm>
#include <cstdint>

#include "input/wheel_clicks.h"

namespace orbinex {

/// How far a wheel has turned since it was last asked.
struct WheelMotion {
    /// In 1/120 of a click.
    int steps = 0;
    /// The whole clicks that these steps complete.
    int clicks = 0;
    friend bool operator==(const WheelMotion&, const WheelMotion&) = default;
};

/// One axis of scrolling as a wheel of high resolution, whose clicks are as far apart as those of
/// WheelClicks. Carries what is less than a step and what is less than a click.
class FineWheel {
  public:
    /// The kernel's unit of REL_WHEEL_HI_RES.
    static constexpr std::int64_t stepsPerClick = 120;
    /// The most steps of one event; what is beyond is dropped, as WheelClicks does.
    static constexpr std::int64_t maximumSteps = WheelClicks::maximumClicks * stepsPerClick;

    /// Takes up pixel units and gives the motion that is due, negative for the negative direction.
    WheelMotion add(std::int32_t pixels) {
        const std::int64_t total = stepRemainder_ + pixels * stepsPerClick;
        stepRemainder_ = total % WheelClicks::pixelsPerClick;
        const auto steps = std::clamp(total / WheelClicks::pixelsPerClick, -maximumSteps, maximumSteps);

        const std::int64_t turned = clickRemainder_ + steps;
        clickRemainder_ = turned % stepsPerClick;
        return {static_cast<int>(steps), static_cast<int>(turned / stepsPerClick)};
    }
    void reset() { *this = {}; }

  private:
    /// Pixels times stepsPerClick; between minus and plus WheelClicks::pixelsPerClick.
    std::int64_t stepRemainder_ = 0;
    /// Steps; between minus and plus stepsPerClick.
    std::int64_t clickRemainder_ = 0;
};

}  // namespace orbinex
