#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

#include "audio/background/media_workers.h"

namespace orbinex {

/// The background threads. One does everything in order; while what it does takes long, as on a disk that
/// does not answer, others take over the rest.
class MediaThreads {
  public:
    struct Limits {
        /// After this long with one step, a thread is no longer waited for.
        std::chrono::nanoseconds patience = std::chrono::milliseconds(100);
        /// Threads that may hang at a time, and one more.
        std::size_t mostThreads = 64;
        /// How long the end waits for the threads.
        std::chrono::nanoseconds grace = std::chrono::seconds(1);
    };
    /// Time since some fixed moment, from any thread.
    using Clock = std::function<std::chrono::nanoseconds()>;

    MediaThreads();
    MediaThreads(Limits limits, Clock clock);
    MediaThreads(const MediaThreads&) = delete;
    MediaThreads& operator=(const MediaThreads&) = delete;
    /// Runs nothing more, and lets go of what was posted. A thread that hangs is left behind, with what it
    /// holds. Destroy those that post before: what is posted later is let go of at once, where it is posted.
    ~MediaThreads();

    [[nodiscard]] std::shared_ptr<MediaWorkers> workers() const;

  private:
    class Crew;

    std::shared_ptr<Crew> crew_;
};

}  // namespace orbinex
