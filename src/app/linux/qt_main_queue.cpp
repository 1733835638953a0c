#include "app/linux/qt_main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <unordered_map>
#include <utility>

namespace orbinex {

/// Receives the event loop's timer events and posted jobs. Timers hold it weakly, so that one may outlive its
/// queue.
class QtMainQueue::Dispatcher final : public QObject {
  public:
    struct Pending {
        std::shared_ptr<Job> job;
        bool isRepeated;
    };

    int start(Delay delay, Pending pending) {
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::max(delay, Delay::zero()));
        const int id = startTimer(wait, Qt::PreciseTimer);
        pending_.emplace(id, std::move(pending));
        return id;
    }

    void stop(int id) {
        if (pending_.erase(id) > 0) killTimer(id);
    }

    [[nodiscard]] bool isPending(int id) const { return pending_.contains(id); }

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
        if (!found->second.isRepeated) stop(event->timerId());
        (*job)();
    }

  private:
    std::unordered_map<int, Pending> pending_;
};

class QtMainQueue::Entry final : public Timer::Entry {
  public:
    Entry(const std::shared_ptr<Dispatcher>& dispatcher, int id) : dispatcher_(dispatcher), id_(id) {}
    ~Entry() override {
        if (const auto dispatcher = dispatcher_.lock()) dispatcher->stop(id_);
    }
    [[nodiscard]] bool isPending() const override {
        const auto dispatcher = dispatcher_.lock();
        return dispatcher && dispatcher->isPending(id_);
    }

  private:
    std::weak_ptr<Dispatcher> dispatcher_;
    int id_;
};

QtMainQueue::QtMainQueue() : dispatcher_(std::make_shared<Dispatcher>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Job job) {
    QCoreApplication::postEvent(dispatcher_.get(), new Dispatcher::JobEvent(std::move(job)));
}

Timer QtMainQueue::arm(Delay delay, bool isRepeated, Job job) {
    const int id = dispatcher_->start(delay, {std::make_shared<Job>(std::move(job)), isRepeated});
    return Timer(std::make_unique<Entry>(dispatcher_, id));
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
