#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "base/main_queue.h"

namespace orbinex {

/// A main queue whose time stands still until it is advanced. Jobs that fall due at the same moment run in
/// the order in which they were set. Only post() may be called from other threads.
class VirtualMainQueue final : public MainQueue {
  public:
    /// Wall-clock time at creation, seconds since 2001-01-01 UTC.
    explicit VirtualMainQueue(Date start = Date(Seconds(800'000'000.0)));
    ~VirtualMainQueue() override;

    void post(Job job) override;
    [[nodiscard]] Timer after(Delay delay, Job job) override;
    [[nodiscard]] Timer every(Delay interval, Job job) override;
    [[nodiscard]] Date now() const override;
    [[nodiscard]] std::chrono::nanoseconds uptime() const override;

    /// Runs everything that is due at the present moment, jobs that this posts included.
    void runDue();
    /// Runs everything up to `span` from now, each job at its own moment, and leaves the clock there.
    void advance(Delay span);
    /// Moves the clock to the next timer and runs what is due; false when there is no timer.
    bool advanceToNext();

    /// Timers that are still to fire.
    [[nodiscard]] std::size_t pendingTimers() const;

  private:
    class Entry;
    struct Schedule;
    Timer arm(Delay delay, Delay interval, Job job);
    bool runOnePosted();
    bool runOneTimer(std::chrono::nanoseconds limit);

    Date start_;
    std::shared_ptr<Schedule> schedule_;
    std::mutex postedMutex_;
    std::deque<Job> posted_;
};

}  // namespace orbinex
