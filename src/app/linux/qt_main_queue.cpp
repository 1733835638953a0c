#include "app/linux/qt_main_queue.h"

#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <system_error>
#include <unordered_map>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include "app/linux/fd_watch.h"

namespace orbinex {

/// Receives the event loop's timer events and keeps the posted jobs. Timers hold it weakly, so that one may
/// outlive its queue.
class QtMainQueue::Dispatcher final : public QObject {
  public:
    Dispatcher() : hasPosted_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
        if (hasPosted_ < 0) throw std::system_error(errno, std::generic_category(), "no main queue");
    }
    Dispatcher(const Dispatcher&) = delete;
    Dispatcher& operator=(const Dispatcher&) = delete;
    ~Dispatcher() override { close(hasPosted_); }

    /// Readable for as long as there are posted jobs.
    [[nodiscard]] int hasPosted() const { return hasPosted_; }

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

    /// From any thread. Not an event of Qt's own: the thread sanitizer, which cannot see into Qt, would take
    /// the hand-over for a race.
    void post(Job job) {
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) eventfd_write(hasPosted_, 1);
        posted_.push_back(std::move(job));
    }

    [[nodiscard]] std::size_t postedCount() {
        const std::lock_guard lock(mutex_);
        return posted_.size();
    }

    /// The job to run next; empty when there is none.
    [[nodiscard]] Job takePosted() {
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) return {};
        Job job = std::move(posted_.front());
        posted_.pop_front();
        if (posted_.empty()) {
            eventfd_t count = 0;
            eventfd_read(hasPosted_, &count);
        }
        return job;
    }

  protected:
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

    const int hasPosted_;
    std::mutex mutex_;
    std::deque<Job> posted_;
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

QtMainQueue::QtMainQueue()
    : dispatcher_(std::make_shared<Dispatcher>()),
      watch_(std::make_unique<FdWatch>(dispatcher_->hasPosted(), [weak = std::weak_ptr(dispatcher_)] {
          // As many as there are now: a job that posts itself must not keep timers and windows waiting. A job
          // may destroy this queue, or run the ones after it in an event loop of its own.
          const auto next = [&weak]() -> Job {
              const auto dispatcher = weak.lock();
              return dispatcher ? dispatcher->takePosted() : Job();
          };
          for (auto left = weak.lock()->postedCount(); left > 0; --left) {
              const auto job = next();
              if (!job) return;
              job();
          }
      })) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Job job) {
    dispatcher_->post(std::move(job));
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
