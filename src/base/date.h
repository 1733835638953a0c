#pragma once

#include <chrono>

namespace orbinex {

/// The clock that stored dates count on: its epoch is 2001-01-01 00:00:00 UTC. It is read through
/// MainQueue::now.
struct ReferenceClock {
    using duration = std::chrono::duration<double>;
    using time_point = std::chrono::time_point<ReferenceClock>;
};

/// A moment on the wall clock, in seconds with a fraction since 2001-01-01 00:00:00 UTC.
using Date = ReferenceClock::time_point;
/// A length of time in seconds with a fraction.
using Seconds = std::chrono::duration<double>;

/// 2001-01-01 00:00:00 UTC in seconds since 1970-01-01 00:00:00 UTC.
inline constexpr Seconds referenceEpoch{978307200.0};

constexpr Date dateFromUnix(Seconds sinceUnixEpoch) {
    return Date(sinceUnixEpoch - referenceEpoch);
}

}  // namespace orbinex
