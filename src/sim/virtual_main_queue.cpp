#include "sim/virtual_main_queue.h"

#include <algorithm>

namespace orbinex {

using std::chrono::nanoseconds;

/// The timers by the moment at which they fall due, then by the order in which they were set. Timers hold it
/// weakly, so that one may outlive its queue.
struct VirtualMainQueue::Schedule {
    using Key = std::pair<nanoseconds, std::uint64_t>;
    nanoseconds time{0};
    std::uint64_t nextSerial = 0;
    std::map<Key, Entry*> due;
};

class VirtualMainQueue::Entry final : public Timer::Entry {
  public:
    Entry(const std::shared_ptr<Schedule>& schedule, Delay interval, Job job)
        : schedule_(schedule), interval_(interval), job_(std::make_shared<Job>(std::move(job))) {}
    ~Entry() override { disarm(); }

    [[nodiscard]] bool isPending() const override { return isArmed_; }

    void arm(nanoseconds when) {
        if (const auto schedule = schedule_.lock()) {
            key_ = {when, schedule->nextSerial++};
            schedule->due.emplace(key_, this);
            isArmed_ = true;
        }
    }

    void fire() {
        disarm();
        // The job may destroy this timer; after the call nothing of it is touched.
        const auto job = job_;
        if (interval_ > Delay::zero()) arm(key_.first + interval_);
        (*job)();
    }

    void abandon() { isArmed_ = false; }

  private:
    void disarm() {
        if (!isArmed_) return;
        isArmed_ = false;
        if (const auto schedule = schedule_.lock()) schedule->due.erase(key_);
    }

    std::weak_ptr<Schedule> schedule_;
    Delay interval_;
    std::shared_ptr<Job> job_;
    Schedule::Key key_;
    bool isArmed_ = false;
};

VirtualMainQueue::VirtualMainQueue(Date start) : start_(start), schedule_(std::make_shared<Schedule>()) {}

VirtualMainQueue::~VirtualMainQueue() {
    for (const auto& [key, entry] : schedule_->due) entry->abandon();
}

void VirtualMainQueue::post(Job job) {
    const std::scoped_lock lock(postedMutex_);
    posted_.push_back(std::move(job));
}

Timer VirtualMainQueue::arm(Delay delay, Delay interval, Job job) {
    auto entry = std::make_unique<Entry>(schedule_, interval, std::move(job));
    entry->arm(schedule_->time + std::max(delay, Delay::zero()));
    return Timer(std::move(entry));
}

Timer VirtualMainQueue::after(Delay delay, Job job) {
    return arm(delay, Delay::zero(), std::move(job));
}

Timer VirtualMainQueue::every(Delay interval, Job job) {
    const Delay period = std::max<Delay>(interval, std::chrono::milliseconds(1));
    return arm(period, period, std::move(job));
}

Date VirtualMainQueue::now() const {
    return start_ + Seconds(schedule_->time);
}

nanoseconds VirtualMainQueue::uptime() const {
    return schedule_->time;
}

bool VirtualMainQueue::runOnePosted() {
    Job job;
    {
        const std::scoped_lock lock(postedMutex_);
        if (posted_.empty()) return false;
        job = std::move(posted_.front());
        posted_.pop_front();
    }
    job();
    return true;
}

bool VirtualMainQueue::runOneTimer(nanoseconds limit) {
    if (schedule_->due.empty()) return false;
    const auto& [key, entry] = *schedule_->due.begin();
    if (key.first > limit) return false;
    schedule_->time = std::max(schedule_->time, key.first);
    entry->fire();
    return true;
}

void VirtualMainQueue::runDue() {
    while (runOnePosted() || runOneTimer(schedule_->time)) {
    }
}

void VirtualMainQueue::advance(Delay span) {
    const nanoseconds end = schedule_->time + std::max(span, Delay::zero());
    while (runOnePosted() || runOneTimer(end)) {
    }
    schedule_->time = std::max(schedule_->time, end);
}

bool VirtualMainQueue::advanceToNext() {
    runDue();
    if (schedule_->due.empty()) return false;
    schedule_->time = schedule_->due.begin()->first.first;
    runDue();
    return true;
}

std::size_t VirtualMainQueue::pendingTimers() const {
    return schedule_->due.size();
}

}  // namespace orbinex
