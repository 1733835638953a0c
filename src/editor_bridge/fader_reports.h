#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <mutex>
#include <utility>

#include "editor_bridge/midi_surface.h"

namespace orbinex {

/// What a workstation has said of its faders and the main thread has not taken yet: of each fader the last
/// word, in the order of the last words. So a workstation that talks faster than we listen takes no memory,
/// and what is heard is never older than what was heard before. Any thread.
class FaderReports {
  public:
    using List = std::array<FaderFeedback, masterFaderChannel + 1>;

    /// True for the first since the last take(): now somebody has to come and take.
    bool put(const FaderFeedback& report) {
        const std::scoped_lock lock(mutex_);
        const auto end = reports_.begin() + size_;
        const auto isSameFader = [&](const FaderFeedback& other) {
            return other.trackIndex == report.trackIndex;
        };
        const auto kept = std::remove_if(reports_.begin(), end, isSameFader);
        const bool isFirst = size_ == 0;
        size_ = kept - reports_.begin();
        reports_[static_cast<std::size_t>(size_++)] = report;
        return isFirst;
    }

    /// Calls `each` with every report; from within it, more may be put.
    template <class Each>
    void take(Each each) {
        List taken;
        std::ptrdiff_t count = 0;
        {
            const std::scoped_lock lock(mutex_);
            taken = reports_;
            count = std::exchange(size_, 0);
        }
        std::for_each_n(taken.begin(), count, each);
    }

  private:
    std::mutex mutex_;
    List reports_{};
    std::ptrdiff_t size_ = 0;
};

}  // namespace orbinex
