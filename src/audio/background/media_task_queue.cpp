#include "audio/background/media_task_queue.h"

#include <algorithm>
#include <utility>

namespace orbinex {

void MediaTaskQueue::post(std::shared_ptr<MediaTask> task, Urgency urgency) {
    const bool isUrgent = urgency == Urgency::urgent;
    switch (task->state_) {
        case MediaTask::State::idle: insert(std::move(task), urgency); break;
        case MediaTask::State::running:
            task->isPostedAgain_ = true;
            task->isUrgent_ |= isUrgent;
            break;
        case MediaTask::State::queued:
            if (!isUrgent || task->isUrgent_) break;
            task->isUrgent_ = true;
            const auto place = std::ranges::find(tasks_, task);
            std::rotate(tasks_.begin() + urgentTasks_, place, place + 1);
            ++urgentTasks_;
            break;
    }
}

std::shared_ptr<MediaTask> MediaTaskQueue::take() {
    if (tasks_.empty()) return nullptr;
    auto task = std::move(tasks_.front());
    tasks_.erase(tasks_.begin());
    if (task->isUrgent_) --urgentTasks_;
    task->state_ = MediaTask::State::running;
    task->isUrgent_ = false;
    return task;
}

void MediaTaskQueue::finish(const std::shared_ptr<MediaTask>& task, bool hasMore) {
    task->state_ = MediaTask::State::idle;
    const bool isPostedAgain = std::exchange(task->isPostedAgain_, false);
    if (isPostedAgain || hasMore) insert(task, task->isUrgent_ ? Urgency::urgent : Urgency::ordinary);
}

void MediaTaskQueue::insert(std::shared_ptr<MediaTask> task, Urgency urgency) {
    task->state_ = MediaTask::State::queued;
    task->isUrgent_ = urgency == Urgency::urgent;
    const auto place = task->isUrgent_ ? tasks_.begin() + urgentTasks_++ : tasks_.end();
    tasks_.insert(place, std::move(task));
}

}  // namespace orbinex
