#pragma once

#include <cstddef>
#include <memory>
#include <mutex>

#include "audio/background/chunk_plan.h"
#include "audio/background/media_workers.h"

namespace orbinex {

/// Brings chunks of a file to hand in the background, ahead of where it is read. Its last owner gives it to
/// the workers, as closing a file may wait for a disk.
class ChunkStore : public MediaTask {
  public:
    using Chunk = ChunkPlan::Chunk;
    using Slot = ChunkPlan::Slot;
    using Range = ChunkPlan::Range;

    /// `chunkCount` at least 0.
    ChunkStore(std::shared_ptr<MediaWorkers> workers, Chunk chunkCount)
        : workers_(std::move(workers)), plan_(chunkCount) {}

    /// Fetches the chunks unless they are at hand, and waits for them while it may. A file that has kept a
    /// reader waiting in vain makes nobody wait before it has brought something. Calls `use` with the slot of
    /// each chunk as long as they are at hand in the end and it returns true. Nothing is fetched into the
    /// slots meanwhile; be quick.
    template <class Use>
    void read(Range chunks, Use&& use) {
        std::unique_lock lock(mutex_);
        if (!isAtHand(chunks, lock)) bring(chunks, lock);
        for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk) {
            const auto slot = plan_.find(chunk);
            if (!slot || !use(chunk, *slot)) return;
        }
    }
    /// Fetches the chunks, which turned out not to be at hand any more, and waits for them in the same way.
    /// True when all are at hand in the end.
    bool bringAgain(Range chunks);
    /// None of the chunks is at hand any more.
    void loseAll();
    /// Fetches what lies ahead of these chunks, which were read without having been asked for.
    void noteRead(Range chunks);
    /// Ends its work, once the step that it may be at has ended.
    void close();

    bool run() final;

  protected:
    [[nodiscard]] MediaWorkers& workers() const { return *workers_; }

  private:
    /// Fetches the chunk into the slot, which nobody reads meanwhile. True when all of it came. On a
    /// background thread, one call at a time. When it throws, what it has put there by then is read.
    virtual bool fetch(const ChunkPlan::Fetch& fetch) = 0;
    bool fetchIfPossible(const ChunkPlan::Fetch& next);

    /// Tells the plan that the chunks are read, and the workers of what that makes to fetch. With `mutex_`
    /// held, which is let go of for the workers.
    bool isAtHand(Range chunks, std::unique_lock<std::mutex>& lock);
    /// Waits for chunks that are on their way.
    bool bring(Range chunks, std::unique_lock<std::mutex>& lock);

    std::shared_ptr<MediaWorkers> workers_;
    std::mutex mutex_;
    ChunkPlan plan_;
    bool hasGivenUp_ = false;
    bool isClosed_ = false;
};

}  // namespace orbinex
