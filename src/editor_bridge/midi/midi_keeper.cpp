#include "editor_bridge/midi/midi_keeper.h"

#include <utility>

namespace orbinex {

void MIDIKeeper::run() {
    std::unique_lock lock(mutex_);
    while (!isEnding_) {
        lock.unlock();
        Connection connection = openFirst();
        lock.lock();
        if (connection) {
            connection_ = std::move(connection);
            lock.unlock();
            announce();
            lock.lock();
            wake_.wait(lock, [this] { return isEnding_ || isLost_; });
            connection = std::move(connection_);
            lock.unlock();
            announce();
            // Closed without the lock: it may take its time, and its threads may have something to tell.
            connection.reset();
            lock.lock();
        }
        wake_.wait_for(lock, plan_.retryDelay, [this] { return isEnding_; });
    }
}

void MIDIKeeper::end() {
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_all();
    const std::scoped_lock lock(telling_);
    told_ = {};
}

bool MIDIKeeper::isConnected() const {
    const std::scoped_lock lock(mutex_);
    return connection_ != nullptr;
}

void MIDIKeeper::send(const MIDIMessage& message) {
    const std::scoped_lock lock(mutex_);
    if (connection_) connection_->send(message);
}

void MIDIKeeper::received(const MIDIMessage& message) {
    const std::scoped_lock lock(telling_);
    if (told_.message) told_.message(message);
}

void MIDIKeeper::lost() {
    {
        const std::scoped_lock lock(mutex_);
        isLost_ = true;
    }
    wake_.notify_all();
}

MIDIKeeper::Connection MIDIKeeper::openFirst() {
    for (const auto& open : plan_.systems) {
        {
            // One that was lost before it was opened has told so.
            const std::scoped_lock lock(mutex_);
            isLost_ = false;
        }
        if (auto connection = open(*this)) return connection;
    }
    return nullptr;
}

void MIDIKeeper::announce() {
    const std::scoped_lock lock(telling_);
    if (told_.changed) told_.changed();
}

}  // namespace orbinex
