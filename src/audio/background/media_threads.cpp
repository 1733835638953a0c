#include "audio/background/media_threads.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "audio/background/media_task_queue.h"
#include "audio/background/wait_allowance.h"

namespace orbinex {

namespace {

thread_local const void* crewOfThisThread = nullptr;

bool runStep(MediaTask& task) {
    try {
        return task.run();
    } catch (...) {
        // Out of memory over one file; the others go on.
        return false;
    }
}

}  // namespace

/// What the threads share; one that hangs keeps it alive.
class MediaThreads::Crew final : public MediaWorkers {
  public:
    Crew(Limits limits, Clock clock) : limits_(limits), clock_(std::move(clock)) {}

    void post(std::shared_ptr<MediaTask> task, Urgency urgency) override;
    bool isWorkerThread() const override { return crewOfThisThread == this; }
    bool waitFor(const std::function<bool()>& isDone) override;
    std::chrono::nanoseconds now() const override { return clock_(); }

    void stop();
    /// Threads keep it alive.
    std::weak_ptr<Crew> self;

  private:
    struct Member {
        enum class State : std::uint8_t { idle, busy, finished };

        std::thread thread;
        State state = State::busy;
        /// When its step began.
        std::chrono::nanoseconds busySince{0};
    };

    void work(Member& member);
    /// One step of the next task. False when there is none.
    bool step(Member& member, std::unique_lock<std::mutex>& lock);
    /// With `mutex_` held, as all below.
    bool isAvailable(const Member& member, std::chrono::nanoseconds now) const;
    bool isAnyOtherAvailable(const Member& member) const;
    void startThreadIfNeeded();
    void joinFinished();

    const Limits limits_;
    const Clock clock_;
    std::mutex mutex_;
    std::condition_variable workCame_;
    std::condition_variable stepEnded_;
    MediaTaskQueue queue_;
    std::list<Member> members_;
    std::uint64_t endedSteps_ = 0;
    bool isStopping_ = false;
    WaitAllowance allowance_;
};

void MediaThreads::Crew::post(std::shared_ptr<MediaTask> task, Urgency urgency) {
    const std::lock_guard lock(mutex_);
    if (isStopping_) return;
    queue_.post(std::move(task), urgency);
    startThreadIfNeeded();
    workCame_.notify_one();
}

bool MediaThreads::Crew::waitFor(const std::function<bool()>& isDone) {
    if (isDone()) return true;
    if (isWorkerThread()) return false;
    std::unique_lock lock(mutex_);
    if (isStopping_) return false;
    startThreadIfNeeded();
    const auto begin = clock_();
    const auto limit = allowance_.available(begin);
    if (limit <= limit.zero()) return false;
    const auto end = std::chrono::steady_clock::now() + limit;
    bool isOver = false;
    while (true) {
        const auto seen = endedSteps_;
        lock.unlock();
        const bool done = isDone();
        lock.lock();
        if (done || isOver) {
            allowance_.spend(clock_() - begin);
            return done;
        }
        isOver = !stepEnded_.wait_until(lock, end, [&] { return endedSteps_ != seen; });
    }
}

void MediaThreads::Crew::work(Member& member) {
    crewOfThisThread = this;
    std::unique_lock lock(mutex_);
    while (true) {
        const bool hadWork = step(member, lock);
        // When the others took it for lost and have a thread in its place, it is one too many.
        if (isStopping_ ? !hadWork : isAnyOtherAvailable(member)) break;
        if (hadWork) continue;
        member.state = Member::State::idle;
        workCame_.wait(lock, [this] { return isStopping_ || !queue_.empty(); });
        member.state = Member::State::busy;
        member.busySince = clock_();
    }
    member.state = Member::State::finished;
    stepEnded_.notify_all();
}

bool MediaThreads::Crew::step(Member& member, std::unique_lock<std::mutex>& lock) {
    auto task = queue_.take();
    if (!task) return false;
    member.busySince = clock_();
    const bool isWanted = !isStopping_;
    lock.unlock();
    const bool hasMore = isWanted && runStep(*task);
    lock.lock();
    queue_.finish(task, hasMore);
    ++endedSteps_;
    stepEnded_.notify_all();
    lock.unlock();
    // This may close a file, which may hang as well.
    task.reset();
    lock.lock();
    return true;
}

bool MediaThreads::Crew::isAvailable(const Member& member, std::chrono::nanoseconds now) const {
    return member.state == Member::State::idle ||
           (member.state == Member::State::busy && now - member.busySince < limits_.patience);
}

bool MediaThreads::Crew::isAnyOtherAvailable(const Member& member) const {
    const auto now = clock_();
    return std::ranges::any_of(
        members_, [&](const Member& other) { return &other != &member && isAvailable(other, now); });
}

void MediaThreads::Crew::startThreadIfNeeded() {
    const auto now = clock_();
    if (queue_.empty() || std::ranges::any_of(members_, [&](const Member& m) { return isAvailable(m, now); }))
        return;
    joinFinished();
    if (members_.size() >= limits_.mostThreads) return;
    auto& member = members_.emplace_back();
    member.busySince = now;
    try {
        member.thread = std::thread([crew = self.lock(), &member] { crew->work(member); });
    } catch (const std::system_error&) {
        // The system has none to spare now; it is asked again when something is wanted again.
        members_.pop_back();
    }
}

void MediaThreads::Crew::joinFinished() {
    for (auto& member : members_)
        if (member.state == Member::State::finished) member.thread.join();
    std::erase_if(members_, [](const Member& member) { return member.state == Member::State::finished; });
}

void MediaThreads::Crew::stop() {
    std::unique_lock lock(mutex_);
    isStopping_ = true;
    workCame_.notify_all();
    stepEnded_.wait_for(lock, limits_.grace, [this] {
        return std::ranges::all_of(members_,
                                   [](const Member& m) { return m.state == Member::State::finished; });
    });
    joinFinished();
    for (auto& member : members_) member.thread.detach();
}

MediaThreads::MediaThreads()
    : MediaThreads(Limits(), [] { return std::chrono::steady_clock::now().time_since_epoch(); }) {}

MediaThreads::MediaThreads(Limits limits, Clock clock)
    : crew_(std::make_shared<Crew>(limits, std::move(clock))) {
    crew_->self = crew_;
}

MediaThreads::~MediaThreads() {
    crew_->stop();
}

std::shared_ptr<MediaWorkers> MediaThreads::workers() const {
    return crew_;
}

}  // namespace orbinex
