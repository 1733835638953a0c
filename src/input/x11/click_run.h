#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

#include "input/geometry.h"
#include "protocol/input_packet.h"

namespace orbinex {

/// Counts clicks as X clients do: they take presses of the same button, soon after one another and at the
/// same place, for double and triple clicks. An event of ours that says "second click" must therefore be
/// preceded by as many presses as the clients have not yet seen.
class ClickRun {
  public:
    /// Clients allow 250 to 400 ms between presses; within this time a run is certainly still going on.
    static constexpr std::chrono::milliseconds window{350};
    /// Clients allow about five pixels between presses.
    static constexpr double reach = 5;

    /// Takes note of a press that is the clickState-th of its run (1 to 3; others count as the nearest of
    /// these) and gives how many whole clicks must come before it.
    int missingClicks(MouseButton button, std::int64_t clickState, Point place,
                      std::chrono::nanoseconds now) {
        const int wanted = static_cast<int>(std::clamp<std::int64_t>(clickState, 1, 3));
        const bool goesOn = count_ > 0 && count_ < wanted && button == button_ && now - time_ <= window &&
                            std::abs(place.x - place_.x) <= reach && std::abs(place.y - place_.y) <= reach;
        const int missing = wanted - 1 - (goesOn ? count_ : 0);
        button_ = button;
        place_ = place;
        time_ = now;
        count_ = wanted;
        return missing;
    }

  private:
    MouseButton button_ = MouseButton::left;
    Point place_;
    std::chrono::nanoseconds time_{0};
    /// Clicks of the run that clients have seen; 0 before the first.
    int count_ = 0;
};

}  // namespace orbinex
