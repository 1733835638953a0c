#pragma once

#include <chrono>
#include <thread>

#include "sim/virtual_main_queue.h"

namespace orbinex::test {

/// True as soon as the condition holds, false when it does not within the limit. For what other processes and
/// threads do, which virtual time does not move; what they post to the queue runs meanwhile.
template <class Condition>
bool comesToPass(VirtualMainQueue& queue, Condition condition,
                 std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > end) return false;
        queue.runDue();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace orbinex::test
