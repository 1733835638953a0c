#pragma once

#include <atomic>
#include <cstddef>
#include <thread>

#include <semaphore.h>

#include "editor_bridge/midi/message_ring.h"
#include "editor_bridge/midi/midi_connection.h"

namespace orbinex {

/// Takes what happens on a thread that must not wait, and tells it to a listener, who may, on a thread of its
/// own. Of the loss of the system it tells after every message that came before.
class MIDIRelay {
  public:
    /// The listener must outlive it.
    explicit MIDIRelay(MIDIListener& listener);
    MIDIRelay(const MIDIRelay&) = delete;
    MIDIRelay& operator=(const MIDIRelay&) = delete;
    /// No other thread may use it any more. Returns when all that it was given has been told.
    ~MIDIRelay();

    // Neither of these waits, locks or takes memory.
    /// One thread only. The message is told after the next wake().
    void put(const MIDIMessage& message) { messages_.push(message); }
    void wake() { ::sem_post(&awake_); }
    /// Any thread.
    void lose() {
        isLost_ = true;
        wake();
    }

  private:
    /// More than comes while our thread is kept from the processor for as long as a busy computer does that;
    /// messages beyond are dropped.
    static constexpr std::size_t mostWaiting = 131'072;

    void run();
    void tellMessages();

    MIDIListener& listener_;
    MessageRing messages_{mostWaiting};
    sem_t awake_{};
    std::atomic<bool> isLost_ = false;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

}  // namespace orbinex
