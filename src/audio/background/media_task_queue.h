#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "audio/background/media_workers.h"

namespace orbinex {

/// Tasks that wait for their turn. It is not locked.
class MediaTaskQueue {
  public:
    MediaTaskQueue() { tasks_.reserve(expectedTasks); }

    /// As MediaWorkers::post says.
    void post(std::shared_ptr<MediaTask> task, Urgency urgency);
    [[nodiscard]] bool empty() const { return tasks_.empty(); }
    [[nodiscard]] std::size_t size() const { return tasks_.size(); }
    /// The task whose turn it is, which runs from now on; null when there is none.
    std::shared_ptr<MediaTask> take();
    /// A step of a task taken has ended.
    void finish(const std::shared_ptr<MediaTask>& task, bool hasMore);

  private:
    static constexpr std::size_t expectedTasks = 256;

    void insert(std::shared_ptr<MediaTask> task, Urgency urgency);

    /// Urgent ones first.
    std::vector<std::shared_ptr<MediaTask>> tasks_;
    std::ptrdiff_t urgentTasks_ = 0;
};

}  // namespace orbinex
