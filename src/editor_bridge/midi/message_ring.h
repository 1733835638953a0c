#pragma once

#include <atomic>
#include <bit>
#include <cstddef>
#include <memory>

#include "editor_bridge/midi_endpoints.h"

namespace orbinex {

/// Messages on their way from one thread to another, of which neither ever waits nor takes memory. One thread
/// pushes, one looks and pops.
class MessageRing {
  public:
    /// The capacity is rounded up to a power of two. Memory that no message has reached yet is not touched.
    explicit MessageRing(std::size_t capacity)
        : mask_(std::bit_ceil(capacity) - 1),
          messages_(std::make_unique_for_overwrite<MIDIMessage[]>(mask_ + 1)) {}

    /// False when it is full; the message is dropped then.
    bool push(const MIDIMessage& message) {
        const std::size_t end = end_.load(std::memory_order_relaxed);
        if (end - begin_.load(std::memory_order_acquire) > mask_) return false;
        messages_[end & mask_] = message;
        end_.store(end + 1, std::memory_order_release);
        return true;
    }
    /// The oldest message, which stays; null when there is none.
    [[nodiscard]] const MIDIMessage* front() const {
        const std::size_t begin = begin_.load(std::memory_order_relaxed);
        return begin == end_.load(std::memory_order_acquire) ? nullptr : &messages_[begin & mask_];
    }
    /// Takes the oldest message out; there must be one.
    void pop() { begin_.store(begin_.load(std::memory_order_relaxed) + 1, std::memory_order_release); }

  private:
    const std::size_t mask_;
    const std::unique_ptr<MIDIMessage[]> messages_;
    std::atomic<std::size_t> begin_ = 0;
    std::atomic<std::size_t> end_ = 0;
};

}  // namespace orbinex
