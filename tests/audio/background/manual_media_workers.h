#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "audio/background/media_task_queue.h"

namespace orbinex::test {

/// Workers that work when the test says, in time that the test sets.
class ManualMediaWorkers final : public MediaWorkers {
  public:
    /// Does what is left, and so lets go of what holds these workers.
    class AtEnd {
      public:
        explicit AtEnd(std::shared_ptr<ManualMediaWorkers> workers) : workers_(std::move(workers)) {}
        AtEnd(const AtEnd&) = delete;
        AtEnd& operator=(const AtEnd&) = delete;
        ~AtEnd() { workers_->runAll(); }

      private:
        std::shared_ptr<ManualMediaWorkers> workers_;
    };

    /// Steps that are done while somebody waits.
    int stepsPerWait = 0;
    std::chrono::nanoseconds time = std::chrono::hours(1);
    int waits = 0;

    void post(std::shared_ptr<MediaTask> task, Urgency urgency) override {
        queue_.post(std::move(task), urgency);
    }
    bool isWorkerThread() const override { return isWorking_; }
    bool waitFor(const std::function<bool()>& isDone) override {
        ++waits;
        for (int step = 0; step < stepsPerWait && !isDone(); ++step)
            if (!runStep()) break;
        return isDone();
    }
    std::chrono::nanoseconds now() const override { return time; }
    /// How many are posted.
    std::size_t tasks() const { return queue_.size(); }

    /// False when nothing is posted.
    bool runStep() {
        auto task = queue_.take();
        if (!task) return false;
        const bool wasWorking = std::exchange(isWorking_, true);
        queue_.finish(task, task->run());
        task.reset();
        isWorking_ = wasWorking;
        return true;
    }
    void runAll() {
        while (runStep()) {
        }
    }

  private:
    MediaTaskQueue queue_;
    bool isWorking_ = false;
};

}  // namespace orbinex::test
