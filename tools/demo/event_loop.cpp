#include "event_loop.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace orbinex::demo {

namespace {
constexpr std::chrono::milliseconds lookInterval{3};
}

EventLoop::EventLoop(Milliseconds patience) : deadline_(std::chrono::steady_clock::now() + patience) {}

bool EventLoop::waitUntil(const std::function<bool()>& condition, Milliseconds limit) {
    const auto deadline = std::min(std::chrono::steady_clock::now() + limit, deadline_);
    QTimer wakeUp;
    wakeUp.start(lookInterval);
    for (;;) {
        QCoreApplication::processEvents();
        if (ended_) throw Ended(*ended_);
        if (condition()) return true;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void EventLoop::linger(Milliseconds duration) {
    if (duration > Milliseconds::zero()) waitUntil([] { return false; }, duration);
}

Ended EventLoop::run() {
    while (!ended_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return *ended_;
}

void EventLoop::end(Ended why) {
    if (!ended_) ended_ = std::move(why);
}

}  // namespace orbinex::demo
