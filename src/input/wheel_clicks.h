#pragma once

#include <algorithm>
#include <cstdint>

namespace orbinex {

/// One axis of scrolling in the only form that XTEST has: clicks of a wheel. Carries what is less than a
/// click.
class WheelClicks {
  public:
    /// A wheel click scrolls about three lines in most programs, which is about this many pixels.
    static constexpr std::int64_t pixelsPerClick = 50;
    /// The most clicks of one event. A flick sends many events, so more than this is no scroll of a finger;
    /// what is beyond is dropped.
    static constexpr std::int64_t maximumClicks = 10;

    /// Takes up pixel units and gives the clicks that are due, negative for the negative direction.
    int add(std::int32_t pixels) {
        const std::int64_t total = remainder_ + pixels;
        remainder_ = total % pixelsPerClick;
        return static_cast<int>(std::clamp(total / pixelsPerClick, -maximumClicks, maximumClicks));
    }
    void reset() { remainder_ = 0; }

  private:
    std::int64_t remainder_ = 0;
};

}  // namespace orbinex
