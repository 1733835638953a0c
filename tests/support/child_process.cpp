#include "support/child_process.h"

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

template <class Condition>
bool waitFor(Condition condition, milliseconds limit) {
    for (const auto end = Clock::now() + limit; !condition();) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(milliseconds(1));
    }
    return true;
}

[[noreturn]] void become(std::vector<char*>& words, const ChildProcess::Options& options) {
    ::prctl(PR_SET_PDEATHSIG, options.signalOfDeath);
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    const auto place = [&](int fd, int stream) { ::dup2(fd < 0 ? null : fd, stream); };
    place(options.input, STDIN_FILENO);
    place(options.output, STDOUT_FILENO);
    place(options.errors, STDERR_FILENO);
    for (const auto& [name, value] : options.environment) ::setenv(name.c_str(), value.c_str(), 1);
    ::execvp(words[0], words.data());
    ::_exit(127);
}

}  // namespace

ChildProcess::ChildProcess(std::vector<std::string> command, const Options& options) {
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (auto& word : command) words.push_back(word.data());
    words.push_back(nullptr);
    // Execution closes the other end: until then the process still is this test.
    std::array<int, 2> executed{};
    if (::pipe2(executed.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    pid_ = ::fork();
    if (pid_ == 0) become(words, options);
    ::close(executed[1]);
    char nothing = 0;
    [[maybe_unused]] const auto size = ::read(executed[0], &nothing, 1);
    ::close(executed[0]);
    if (pid_ < 0) throw std::runtime_error("no process for " + command.front());
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(pid_, other.pid_);
    return *this;
}

bool ChildProcess::isRunning() {
    if (pid_ > 0 && ::waitpid(pid_, nullptr, WNOHANG) == pid_) pid_ = -1;
    return pid_ > 0;
}

void ChildProcess::signal(int number) const {
    if (pid_ > 0) ::kill(pid_, number);
}

bool ChildProcess::endsBy(int number, milliseconds limit) {
    signal(number);
    return waitFor([this] { return !isRunning(); }, limit);
}

void ChildProcess::kill() {
    signal(SIGKILL);
    if (pid_ > 0) ::waitpid(std::exchange(pid_, -1), nullptr, 0);
}

bool ChildProcess::comesToAccept(const std::string& socketPath) {
    bool isDone = false;
    waitFor([&] { return (isDone = isAccepting(socketPath)) || !isRunning(); }, std::chrono::seconds(20));
    return isDone;
}

bool isAccepting(const std::string& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isAccepted =
        ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(client);
    return isAccepted;
}

}  // namespace orbinex::test
