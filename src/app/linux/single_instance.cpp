#include "app/linux/single_instance.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include "app/linux/fd_watch.h"
#include "app/linux/instance_socket.h"
#include "base/line_reader.h"

namespace orbinex {

namespace {

constexpr mode_t ownerOnly = 0600;
constexpr int retryMilliseconds = 20;

int openLock(const std::string& path) {
    return ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, ownerOnly);
}

}  // namespace

/// A process that has connected, until its request is answered.
struct SingleInstance::Visitor {
    explicit Visitor(int connection) : fd(connection) {}
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;
    ~Visitor() {
        watch.reset();
        ::close(fd);
    }
    const int fd;
    LineReader lines;
    std::size_t heard = 0;
    bool isDone = false;
    std::unique_ptr<FdWatch> watch;
};

SingleInstance::SingleInstance(const std::optional<std::string>& folder)
    : socketPath_(folder ? *folder + "/orbinex.socket" : std::string()),
      lockPath_(folder ? *folder + "/orbinex.lock" : std::string()) {}

SingleInstance::~SingleInstance() {
    release();
}

SingleInstance::Claim SingleInstance::claim(std::optional<std::string_view> startupToken,
                                            std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto request = startupToken ? openRequest(*startupToken) : std::string(presenceWord);
    for (;;) {
        switch (takePlace()) {
            case Place::taken: return Claim::first;
            case Place::unusable: return Claim::unavailable;
            case Place::held: break;
        }
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return Claim::unanswered;
        // One that has just begun does not listen yet, and one that ends does not listen any more.
        switch (callInstance(socketPath_, request, left)) {
            case CallResult::answered: return Claim::told;
            case CallResult::foreign: return Claim::unavailable;
            case CallResult::silent:
            case CallResult::absent: ::poll(nullptr, 0, retryMilliseconds); break;
        }
    }
}

SingleInstance::Place SingleInstance::takePlace() {
    if (lock_ >= 0) return Place::taken;
    const int lock = openLock(lockPath_);
    if (lock < 0) return Place::unusable;
    // One look decides: a second one could find free what the first found held.
    const bool isFree = ::flock(lock, LOCK_EX | LOCK_NB) == 0;
    const bool isHeld = !isFree && errno == EWOULDBLOCK;
    if (isFree) listener_ = listenAt(socketPath_);
    if (listener_ >= 0) {
        lock_ = lock;
        return Place::taken;
    }
    ::close(lock);
    return isHeld ? Place::held : Place::unusable;
}

bool SingleInstance::isTaken() const {
    if (lock_ >= 0) return false;
    const int lock = openLock(lockPath_);
    if (lock < 0) return false;
    const bool isHeld = ::flock(lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(lock);
    return isHeld;
}

void SingleInstance::release() {
    visitors_.clear();
    watch_.reset();
    if (listener_ >= 0) {
        ::unlink(socketPath_.c_str());
        ::close(std::exchange(listener_, -1));
    }
    if (lock_ >= 0) ::close(std::exchange(lock_, -1));
}

void SingleInstance::reclaim() {
    if (takePlace() == Place::taken && queue_ && !watch_) startServing();
}

bool SingleInstance::askToQuit(std::chrono::milliseconds limit) const {
    const auto result = callInstance(socketPath_, std::string(quitWord), limit);
    return result == CallResult::answered || result == CallResult::absent;
}

void SingleInstance::serve(MainQueue& queue, Requests requests) {
    queue_ = &queue;
    requests_ = std::move(requests);
    if (listener_ >= 0) startServing();
}

void SingleInstance::startServing() {
    watch_ = std::make_unique<FdWatch>(listener_, [this] { admit(); });
}

void SingleInstance::admit() {
    const int connection = acceptOwn(listener_);
    if (connection < 0) return;
    if (visitors_.size() >= maximumVisitors) visitors_.pop_front();
    auto& visitor = *visitors_.emplace_back(std::make_unique<Visitor>(connection));
    visitor.watch = std::make_unique<FdWatch>(connection, [this, &visitor] { hear(visitor); });
}

void SingleInstance::hear(Visitor& visitor) {
    if (visitor.isDone) return;
    std::array<char, 512> piece{};
    const auto count = ::recv(visitor.fd, piece.data(), piece.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    const auto size = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    const auto lines = visitor.lines.take({piece.data(), size});
    visitor.heard += size;
    if (lines.empty() && size > 0 && visitor.heard <= LineReader::longestLine) return;
    visitor.isDone = true;
    if (!lines.empty()) answer(visitor.fd, lines.front());
    // Not here: its watch is what is calling.
    queue_->post(lifetime_.guard(
        [this] { std::erase_if(visitors_, [](const auto& known) { return known->isDone; }); }));
}

void SingleInstance::answer(int connection, std::string_view line) {
    const auto token = startupTokenOf(line);
    if (!token && line != presenceWord && line != quitWord) return;
    answerRequest(connection);
    if (token) queue_->post(lifetime_.guard([this, token = *token] { requests_.open(token); }));
    if (line == quitWord) queue_->post(lifetime_.guard([this] { requests_.quit(); }));
}

}  // namespace orbinex
