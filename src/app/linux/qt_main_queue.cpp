#include "app/linux/qt_main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace orbinex {

/// Receives the event loop's timer events and posted jobs. Timers hold it weakly, so that one may outlive its
/// queue.
class QtMainQueue::Dispatcher final : public QObject {
  public:
    /// One timer. Qt gives the number of a timer that is over to the next one, hence a number of our own.
    struct Key {
        int qtId = 0;
        std::uint64_t serial = 0;
    };

    Key start(Delay delay, bool isRepeated, Job job) {
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::max(delay, Delay::zero()));
        const Key key{startTimer(wait, Qt::PreciseTimer), ++lastSerial_};
        pending_.emplace(key.qtId, Pending{std::make_shared<Job>(std::move(job)), isRepeated, key.serial});
        return key;
    }

    void stop(Key key) {
        if (!isPending(key)) return;
        pending_.erase(key.qtId);
        killTimer(key.qtId);
    }

    [[nodiscard]] bool isPending(Key key) const {
        const auto found = pending_.find(key.qtId);
        return found != pending_.end() && found->second.serial == key.serial;
    }

    /// A posted job on its way.
    class JobEvent final : public QEvent {
      public:
        explicit JobEvent(Job job) : QEvent(User), job_(std::move(job)) {}
        void run() const { job_(); }

      private:
        Job job_;
    };

  protected:
    void customEvent(QEvent* event) override { static_cast<JobEvent*>(event)->run(); }

    void timerEvent(QTimerEvent* event) override {
        const auto found = pending_.find(event->timerId());
        if (found == pending_.end()) return;
        // The job may destroy its timer, or this queue.
        const auto job = found->second.job;
        if (!found->second.isRepeated) stop({event->timerId(), found->second.serial});
        (*job)();
    }

  private:
    struct Pending {
        std::shared_ptr<Job> job;
        bool isRepeated;
        std::uint64_t serial;
    };
    std::unordered_map<int, Pending> pending_;
    std::uint64_t lastSerial_ = 0;
};

class QtMainQueue::Entry final : public Timer::Entry {
  public:
    Entry(const std::shared_ptr<Dispatcher>& dispatcher, Dispatcher::Key key)
        : dispatcher_(dispatcher), key_(key) {}
    ~Entry() override {
        if (const auto dispatcher = dispatcher_.lock()) dispatcher->stop(key_);
    }
    [[nodiscard]] bool isPending() const override {
        const auto dispatcher = dispatcher_.lock();
        return dispatcher && dispatcher->isPending(key_);
    }

  private:
    std::weak_ptr<Dispatcher> dispatcher_;
    Dispatcher::Key key_;
};

QtMainQueue::QtMainQueue() : dispatcher_(std::make_shared<Dispatcher>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Job job) {
    QCoreApplication::postEvent(dispatcher_.get(), new Dispatcher::JobEvent(std::move(job)));
}

Timer QtMainQueue::arm(Delay delay, bool isRepeated, Job job) {
    const auto key = dispatcher_->start(delay, isRepeated, std::move(job));
    return Timer(std::make_unique<Entry>(dispatcher_, key));
}

Timer QtMainQueue::after(Delay delay, Job job) {
    return arm(delay, false, std::move(job));
}

Timer QtMainQueue::every(Delay interval, Job job) {
    return arm(std::max<Delay>(interval, std::chrono::milliseconds(1)), true, std::move(job));
}

Date QtMainQueue::now() const {
    return dateFromUnix(
        std::chrono::duration_cast<Seconds>(std::chrono::system_clock::now().time_since_epoch()));
}

std::chrono::nanoseconds QtMainQueue::uptime() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace orbinex
