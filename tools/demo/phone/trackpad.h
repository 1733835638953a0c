#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "protocol/input_packet.h"

namespace orbinex::demo {

/// What a finger on the trackpad means, as the packets that the phone sends for it.
class Trackpad {
  public:
    using Time = std::chrono::milliseconds;
    using Packets = std::vector<DecodedPacket>;
    /// In points.
    struct Place {
        double x = 0;
        double y = 0;
    };
    /// A finger that moves less than this, in points, has not moved.
    static constexpr double stillness = 3;
    /// A touch that is longer is no tap.
    static constexpr Time longestTap{300};
    /// Between two taps of one run.
    static constexpr Time runLimit{350};

    void touch(Place at, Time now, MouseButton button);
    Packets move(Place to);
    /// The finger has rested for long: what it does next is a drag.
    Packets hold();
    Packets lift(Time now);
    /// The touch is taken away: it was no tap.
    Packets cancel();
    /// A wheel's turn in eighths of a degree, positive away from the person.
    [[nodiscard]] static Packets scroll(double angleX, double angleY);

  private:
    struct Touch {
        Place begin;
        Place last;
        Time since{};
        MouseButton button = MouseButton::left;
        bool hasMoved = false;
        bool isDrag = false;
    };

    std::optional<Touch> touch_;
    std::optional<Time> lastTap_;
    std::uint8_t tapCount_ = 0;
};

}  // namespace orbinex::demo
