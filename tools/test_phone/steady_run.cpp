#include "test_phone/steady_run.h"

#include <algorithm>
#include <utility>

namespace orbinex::test_phone {

SteadyRun::SteadyRun(MainQueue& queue, int perSecond, std::uint32_t total,
                     std::function<bool(std::uint32_t)> act, std::function<void(const Result&)> done)
    : queue_(queue),
      perSecond_(perSecond),
      total_(total),
      act_(std::move(act)),
      done_(std::move(done)),
      start_(queue.uptime()) {
    timer_ = queue_.after({}, [this] { actOnDue(); });
}

std::chrono::nanoseconds SteadyRun::dueAt(std::uint32_t number) const {
    return start_ + std::chrono::nanoseconds(std::chrono::seconds(1)) * number / perSecond_;
}

void SteadyRun::actOnDue() {
    while (result_.count < total_ && result_.isComplete) {
        const auto now = queue_.uptime();
        const auto due = dueAt(result_.count);
        if (due > now) {
            timer_ = queue_.after(due - now, [this] { actOnDue(); });
            return;
        }
        result_.latest = std::max(result_.latest, now - due);
        result_.isComplete = act_(result_.count);
        if (result_.isComplete) ++result_.count;
    }
    result_.elapsed = queue_.uptime() - start_;
    const auto done = std::move(done_);
    done(result_);
}

}  // namespace orbinex::test_phone
