#include "audio/background/chunk_store.h"

namespace orbinex {

bool ChunkStore::bring(Chunk first, Chunk last) {
    bool isMissing = false;
    bool hasWork = false;
    bool mayWait = false;
    {
        const std::lock_guard lock(mutex_);
        const auto now = workers_->now();
        for (Chunk chunk = first; chunk <= last; ++chunk) isMissing |= !plan_.read(chunk, now);
        hasWork = plan_.hasWork();
        mayWait = !hasGivenUp_;
    }
    if (!hasWork && !isMissing) return true;
    workers_->post(shared_from_this(), isMissing ? Urgency::urgent : Urgency::ordinary);
    if (!isMissing) return true;
    if (!mayWait) return false;
    if (workers_->waitFor([this, first, last] { return areAtHand(first, last); })) return true;
    const std::lock_guard lock(mutex_);
    hasGivenUp_ = !workers_->isWorkerThread();
    return false;
}

bool ChunkStore::bringAgain(Chunk first, Chunk last) {
    {
        const std::lock_guard lock(mutex_);
        for (Chunk chunk = first; chunk <= last; ++chunk) plan_.lose(chunk);
    }
    return bring(first, last);
}

void ChunkStore::loseAll() {
    const std::lock_guard lock(mutex_);
    plan_.loseAll();
}

void ChunkStore::noteRead(Chunk chunk) {
    {
        const std::lock_guard lock(mutex_);
        plan_.noteRead(chunk, workers_->now());
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
    const bool isComplete = fetch(*next);
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

bool ChunkStore::areAtHand(Chunk first, Chunk last) const {
    const std::lock_guard lock(mutex_);
    for (Chunk chunk = first; chunk <= last; ++chunk)
        if (!plan_.find(chunk)) return false;
    return true;
}

}  // namespace orbinex
