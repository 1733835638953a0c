#pragma once

#include <cmath>
#include <cstdint>

namespace orbinex {

/// One axis of scrolling: turns fractional amounts into whole units and carries the fraction over.
class ScrollAccumulator {
  public:
    /// Takes up the amount (units, finite) and gives the whole units that are due, truncated toward zero and
    /// limited to 32 bits. What the limit cuts off is lost; the fraction stays.
    std::int32_t add(double units) {
        const double total = remainder_ + units;
        const double whole = std::trunc(total);
        remainder_ = total - whole;
        if (whole >= 2147483647.0) return INT32_MAX;
        if (whole <= -2147483648.0) return INT32_MIN;
        return static_cast<std::int32_t>(whole);
    }
    void reset() { remainder_ = 0; }
    /// Units taken up and not yet given, between -1 and 1.
    [[nodiscard]] double remainder() const { return remainder_; }

  private:
    double remainder_ = 0;
};

}  // namespace orbinex
