#pragma once

#include <algorithm>
#include <chrono>

namespace orbinex {

/// How long the main thread may still be held up: 8 ms in a meter tick's 66 ms, so that the pointer does not
/// stutter.
class WaitAllowance {
  public:
    using Duration = std::chrono::nanoseconds;
    static constexpr Duration most = std::chrono::milliseconds(8);
    static constexpr Duration period = std::chrono::milliseconds(66);
    /// At a time, so that one slow file does not use up what the others need.
    static constexpr Duration mostAtATime = std::chrono::milliseconds(2);

    /// For how long a wait that begins at `now` may last.
    Duration available(Duration now) {
        const Duration passed = std::clamp(now - lastTime_, Duration(0), longest);
        lastTime_ = now;
        left_ = std::min(most, left_ + passed * most.count() / period.count());
        return std::clamp(left_, Duration(0), mostAtATime);
    }
    /// A wait that lasted longer than it should have is made up for before the next.
    void spend(Duration waited) { left_ -= std::max(waited, Duration(0)); }

  private:
    /// What makes up for every wait there can be.
    static constexpr Duration longest = std::chrono::minutes(1);

    Duration left_ = most;
    Duration lastTime_{0};
};

}  // namespace orbinex
