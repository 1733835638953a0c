#pragma once

#include <algorithm>
#include <cmath>

#include "base/date.h"

namespace orbinex {

/// The delay before the next automatic attempt: doubled with every attempt, up to a maximum.
struct ReconnectBackoff {
    /// Seconds.
    double base = 1.0;
    double maximum = 30.0;
    /// Attempts since the last success or reset.
    int attempt = 0;

    /// The delay for the next attempt, which is counted. The exponent stops at 16, far beyond the maximum.
    Seconds next() {
        const double delay = std::min(base * std::exp2(std::min(attempt, 16)), maximum);
        ++attempt;
        return Seconds(delay);
    }

    friend bool operator==(const ReconnectBackoff&, const ReconnectBackoff&) = default;
};

}  // namespace orbinex
