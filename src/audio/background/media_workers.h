#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "audio/background/media_task.h"

namespace orbinex {

enum class Urgency : std::uint8_t { ordinary, urgent };

/// Does the work that the meters cannot wait for: opening, closing, decoding and reading from disks.
class MediaWorkers {
  public:
    MediaWorkers() = default;
    MediaWorkers(const MediaWorkers&) = delete;
    MediaWorkers& operator=(const MediaWorkers&) = delete;
    virtual ~MediaWorkers() = default;

    /// Has the task run once, urgent ones first, else in the order of posting. One that is waiting for its
    /// turn already is not queued twice, one that runs is run once more. It is let go of on a background
    /// thread, and with it what nobody else holds. From any thread.
    virtual void post(std::shared_ptr<MediaTask> task, Urgency urgency) = 0;
    /// True on the threads that run tasks. There is time there to wait for a disk.
    [[nodiscard]] virtual bool isWorkerThread() const = 0;
    /// Waits until `isDone`, which is looked at after every step of a task; only for as long as the main
    /// thread may be held up now, which may be not at all. Returns what `isDone` says in the end. On a
    /// background thread it does not wait.
    virtual bool waitFor(const std::function<bool()>& isDone) = 0;
    /// Time since some fixed moment. From any thread.
    [[nodiscard]] virtual std::chrono::nanoseconds now() const = 0;
};

}  // namespace orbinex
