#pragma once

#include <array>
#include <cstddef>
#include <span>

#include <linux/input.h>

#include "input/uinput/fine_wheel.h"

namespace orbinex {

/// What a mouse tells the kernel of the turning of its wheels: events that belong together and the mark that
/// ends them. Nothing when no wheel has turned.
class ScrollReport {
  public:
    /// `up` turns to scroll up, `left` to scroll left.
    ScrollReport(WheelMotion up, WheelMotion left);

    [[nodiscard]] std::span<const input_event> events() const { return std::span(events_).first(count_); }

  private:
    void add(unsigned type, unsigned code, int value);

    /// Two axes in steps and in clicks, and the mark.
    std::array<input_event, 5> events_{};
    std::size_t count_ = 0;
};

}  // namespace orbinex
