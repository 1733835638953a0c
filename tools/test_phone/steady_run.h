#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "base/main_queue.h"

namespace orbinex::test_phone {

/// Does something a number of times at a steady rate: the n-th time is due n/rate after the start, however
/// late the times before it were. It ends with this object.
class SteadyRun {
  public:
    struct Result {
        std::uint32_t count = 0;
        std::chrono::nanoseconds elapsed{0};
        /// How late the one that was latest came.
        std::chrono::nanoseconds latest{0};
        /// False when `act` said no before the end.
        bool isComplete = true;
    };

    /// Calls `act` with 0, 1, 2, ... up to `total`, `perSecond` times (at least 1) a second, the first time
    /// soon; false from it ends the run. Calls `done` once at the end; it may destroy this.
    SteadyRun(MainQueue& queue, int perSecond, std::uint32_t total, std::function<bool(std::uint32_t)> act,
              std::function<void(const Result&)> done);

  private:
    void actOnDue();
    [[nodiscard]] std::chrono::nanoseconds dueAt(std::uint32_t number) const;

    MainQueue& queue_;
    int perSecond_;
    std::uint32_t total_;
    std::function<bool(std::uint32_t)> act_;
    std::function<void(const Result&)> done_;
    std::chrono::nanoseconds start_;
    Result result_;
    Timer timer_;
};

}  // namespace orbinex::test_phone
