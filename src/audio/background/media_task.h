#pragma once

#include <cstdint>
#include <memory>

namespace orbinex {

/// A piece of work on a media file that may take long. It owns what it touches: when the file's disk hangs it
/// may never end, and outlives everything else then.
class MediaTask : public std::enable_shared_from_this<MediaTask> {
  public:
    MediaTask() = default;
    MediaTask(const MediaTask&) = delete;
    MediaTask& operator=(const MediaTask&) = delete;
    virtual ~MediaTask() = default;

    /// One step, on a background thread; never on two at a time. True when there is more to do: others get
    /// their turn before.
    virtual bool run() = 0;

  private:
    friend class MediaTaskQueue;
    enum class State : std::uint8_t { idle, queued, running };

    // The queue's.
    State state_ = State::idle;
    bool isUrgent_ = false;
    /// Posted while it ran.
    bool isPostedAgain_ = false;
};

}  // namespace orbinex
