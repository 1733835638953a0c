#pragma once

#include <memory>

#include "base/main_queue.h"

namespace orbinex {

class FdWatch;

/// The main queue on the Qt event loop of the thread that creates it, which needs an application object.
/// Timers are precise to a millisecond, never early.
class QtMainQueue final : public MainQueue {
  public:
    QtMainQueue();
    ~QtMainQueue() override;

    void post(Job job) override;
    [[nodiscard]] Timer after(Delay delay, Job job) override;
    [[nodiscard]] Timer every(Delay interval, Job job) override;
    [[nodiscard]] Date now() const override;
    [[nodiscard]] std::chrono::nanoseconds uptime() const override;

  private:
    class Dispatcher;
    class Entry;
    Timer arm(Delay delay, bool isRepeated, Job job);

    std::shared_ptr<Dispatcher> dispatcher_;
    std::unique_ptr<FdWatch> watch_;
};

}  // namespace orbinex
