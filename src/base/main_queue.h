#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/date.h"

namespace orbinex {

/// A piece of delayed or repeated work that is wanted only while this object lives. Destroying, cancelling or
/// assigning over it guarantees that its job is not called any more. It may do so from within that job.
class Timer {
  public:
    /// What a queue keeps for one timer; its destructor takes the job out of the queue.
    class Entry {
      public:
        Entry() = default;
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        virtual ~Entry() = default;
        /// False once a one-shot job has been started.
        [[nodiscard]] virtual bool isPending() const = 0;
    };

    Timer() = default;
    explicit Timer(std::unique_ptr<Entry> entry) : entry_(std::move(entry)) {}

    void cancel() { entry_.reset(); }
    /// True while the job is still to be called (again).
    [[nodiscard]] bool isActive() const { return entry_ && entry_->isPending(); }

  private:
    std::unique_ptr<Entry> entry_;
};

/// The one thread that all logic runs on, and the only clock that it knows.
class MainQueue {
  public:
    using Job = std::function<void()>;
    using Delay = std::chrono::nanoseconds;

    MainQueue() = default;
    MainQueue(const MainQueue&) = delete;
    MainQueue& operator=(const MainQueue&) = delete;
    virtual ~MainQueue() = default;

    /// Runs the job on the main thread, after everything posted before it. May be called from any thread.
    virtual void post(Job job) = 0;
    /// Runs the job once after the delay (at once in the next turn when it is zero or negative). Main thread
    /// only.
    [[nodiscard]] virtual Timer after(Delay delay, Job job) = 0;
    /// Runs the job every `interval` (at least one millisecond), first after one interval. Main thread only.
    [[nodiscard]] virtual Timer every(Delay interval, Job job) = 0;

    /// The wall clock; it may be set, and jump.
    [[nodiscard]] virtual Date now() const = 0;
    /// Time since some fixed moment; it never runs backwards.
    [[nodiscard]] virtual std::chrono::nanoseconds uptime() const = 0;
};

}  // namespace orbinex
