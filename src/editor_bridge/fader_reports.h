#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <mutex>
#include <utility>

#include "editor_bridge/midi_surface.h"

namespace orbinex {

/// What a workstation has said of its faders and the main thread has not taken yet, in order. A workstation
/// that talks faster than we listen takes no memory: when there is no more room, what is left is the last
/// word of each fader, in the order of the last words. Any thread.
class FaderReports {
  public:
    /// More than a workstation says between two turns of the main thread that are not late, and few enough
    /// for the link to the iPhone to take at once, beside a session: what the link has no room for are the
    /// newest.
    static constexpr std::size_t capacity = 256;

    /// True for the first since the last take(): now somebody has to come and take.
    bool put(const FaderFeedback& report) {
        const std::scoped_lock lock(mutex_);
        if (size_ == capacity) keepLastWords();
        reports_[size_] = report;
        return size_++ == 0;
    }

    /// Calls `each` with every report; from within it, more may be put.
    template <class Each>
    void take(Each each) {
        List taken;
        std::size_t count = 0;
        {
            const std::scoped_lock lock(mutex_);
            count = std::exchange(size_, 0);
            std::copy_n(reports_.begin(), count, taken.begin());
        }
        std::for_each_n(taken.begin(), count, each);
    }

  private:
    using List = std::array<FaderFeedback, capacity>;

    void keepLastWords() {
        std::array<bool, masterFaderChannel + 1> isKept{};
        auto first = reports_.end();
        for (auto report = reports_.end(); report != reports_.begin();) {
            --report;
            if (!std::exchange(isKept.at(static_cast<std::size_t>(report->trackIndex)), true))
                *--first = *report;
        }
        size_ = static_cast<std::size_t>(reports_.end() - first);
        std::copy(first, reports_.end(), reports_.begin());
    }

    std::mutex mutex_;
    List reports_{};
    std::size_t size_ = 0;
};

}  // namespace orbinex
