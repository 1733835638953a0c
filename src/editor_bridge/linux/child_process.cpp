#include "editor_bridge/linux/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex {

namespace {

struct Pipe {
    Descriptor reading;
    Descriptor writing;
};

std::optional<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
    return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
}

/// The C library's own function cannot be called from C++ before its version 2.37.
int openPidfd(pid_t pid) {
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

/// Holds all signals back, so that no handler of ours runs in the child.
class BlockedSignals {
  public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};

/// What is ignored stays so in a new program, and what is blocked too.
void resetSignals() {
    struct sigaction byDefault {};
    byDefault.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number) ::sigaction(number, &byDefault, nullptr);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Leaves 0 to 2 as the program shall see them, and `failure` as 3, which the new program closes.
bool arrangeDescriptors(int output, int failure) {
    constexpr int firstFree = 4;
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    // Out of the way first: where our own standard streams are closed, pipes have their numbers.
    const int nullAbove = ::fcntl(null, F_DUPFD_CLOEXEC, firstFree);
    const int outputAbove = ::fcntl(output, F_DUPFD_CLOEXEC, firstFree);
    const int failureAbove = ::fcntl(failure, F_DUPFD_CLOEXEC, firstFree);
    if (nullAbove < 0 || outputAbove < 0 || failureAbove < 0) return false;
    return ::dup2(nullAbove, 0) == 0 && ::dup2(outputAbove, 1) == 1 && ::dup2(nullAbove, 2) == 2 &&
           ::dup3(failureAbove, 3, O_CLOEXEC) == 3 && ::close_range(firstFree, ~0U, 0) == 0;
}

/// In the child, where only functions that are safe in signal handlers may be called: another thread may
/// have held any lock at the fork.
[[noreturn]] void become(const char* path, char* const* arguments, pid_t parent, int output, int failure) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // It may have died before that.
    if (::getppid() != parent) ::_exit(127);
    if (arrangeDescriptors(output, failure)) {
        failure = 3;
        resetSignals();
        ::execv(path, arguments);
    }
    const char sign = 1;
    [[maybe_unused]] const auto written = ::write(failure, &sign, 1);
    ::_exit(127);
}

/// The other end was closed by the new program, without a word before.
bool hasStarted(int failure) {
    char sign = 0;
    ssize_t size = 0;
    do {
        size = ::read(failure, &sign, 1);
    } while (size < 0 && errno == EINTR);
    return size == 0;
}

}  // namespace

std::optional<ChildProcess::Launched> ChildProcess::launch(const std::string& path,
                                                           const std::vector<std::string>& arguments) {
    auto output = makePipe();
    auto failure = makePipe();
    if (!output || !failure || ::fcntl(output->reading.get(), F_SETFL, O_NONBLOCK) != 0) return std::nullopt;
    std::vector<char*> pointers{const_cast<char*>(path.c_str())};
    for (const auto& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);

    const pid_t parent = ::getpid();
    pid_t pid = -1;
    {
        const BlockedSignals blocked;
        pid = ::fork();
        if (pid == 0) {
            become(path.c_str(), pointers.data(), parent, output->writing.get(), failure->writing.get());
        }
    }
    if (pid < 0) return std::nullopt;
    ChildProcess child(pid, Descriptor(openPidfd(pid)));
    output->writing.close();
    failure->writing.close();
    const bool isRunning = hasStarted(failure->reading.get());
    if (!isRunning || !child.exit_) {
        child.signal(SIGKILL);
        child.reap();
        return std::nullopt;
    }
    return Launched{std::move(child), std::move(output->reading)};
}

ChildProcess::~ChildProcess() {
    if (!exit_) return;
    signal(SIGKILL);
    reap();
}

void ChildProcess::signal(int number) const {
    // It may have left its group.
    if (::kill(-pid_, number) != 0) ::kill(pid_, number);
}

bool ChildProcess::waitForEnd(std::chrono::milliseconds atMost) const {
    pollfd end{exit_.get(), POLLIN, 0};
    return ::poll(&end, 1, static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, atMost.count()))) ==
           1;
}

void ChildProcess::reap() {
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
    exit_.close();
}

}  // namespace orbinex
