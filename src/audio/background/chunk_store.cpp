#include "audio/background/chunk_store.h"

namespace orbinex {

bool ChunkStore::isAtHand(Range chunks, std::unique_lock<std::mutex>& lock) {
    const bool isAtHand = plan_.read(chunks, workers_->now());
    if (isAtHand && !plan_.hasWork()) return true;
    lock.unlock();
    workers_->post(shared_from_this(), isAtHand ? Urgency::ordinary : Urgency::urgent);
    lock.lock();
    return isAtHand;
}

bool ChunkStore::bring(Range chunks, std::unique_lock<std::mutex>& lock) {
    if (hasGivenUp_) return false;
    lock.unlock();
    const bool isThere = workers_->waitFor([this, chunks] {
        const std::lock_guard again(mutex_);
        return plan_.areAtHand(chunks);
    });
    lock.lock();
    if (!isThere) hasGivenUp_ = !workers_->isWorkerThread();
    return isThere;
}

bool ChunkStore::bringAgain(Range chunks) {
    std::unique_lock lock(mutex_);
    plan_.lose(chunks);
    return isAtHand(chunks, lock) || bring(chunks, lock);
}

void ChunkStore::loseAll() {
    const std::lock_guard lock(mutex_);
    plan_.loseAll();
}

void ChunkStore::noteRead(Range chunks) {
    {
        const std::lock_guard lock(mutex_);
        plan_.noteRead(chunks, workers_->now());
        if (!plan_.hasWork()) return;
    }
    workers_->post(shared_from_this(), Urgency::ordinary);
}

void ChunkStore::close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
}

bool ChunkStore::run() {
    std::optional<ChunkPlan::Fetch> next;
    {
        const std::lock_guard lock(mutex_);
        if (!isClosed_) next = plan_.beginFetch();
    }
    if (!next) return false;
    const bool isComplete = fetchIfPossible(*next);
    bool hasDemand = false;
    bool hasWork = false;
    {
        const std::lock_guard lock(mutex_);
        plan_.endFetch(next->slot, isComplete, workers_->now());
        hasGivenUp_ = false;
        hasDemand = plan_.hasDemand() && !isClosed_;
        hasWork = plan_.hasWork() && !isClosed_;
    }
    if (hasDemand) workers_->post(shared_from_this(), Urgency::urgent);
    return hasWork;
}

bool ChunkStore::fetchIfPossible(const ChunkPlan::Fetch& next) {
    try {
        return fetch(next);
    } catch (...) {
        // Out of memory, perhaps over a file that lies; it is tried again later.
        return false;
    }
}

}  // namespace orbinex
