#include "support/private_x_server.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

constexpr int startLimitMilliseconds = 20'000;

[[noreturn]] void becomeServer(int displayFd, const std::string& screen, const char* withoutExtension) {
    // A test that crashes must not leave its server behind.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(null, STDERR_FILENO);
    const std::string fd = std::to_string(displayFd);
    ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-noreset", "-nolisten", "tcp", "-screen", "0",
             screen.c_str(), withoutExtension ? "-extension" : nullptr, withoutExtension,
             static_cast<char*>(nullptr));
    ::_exit(127);
}

/// The first line that arrives; empty when the other end closes or is too slow.
std::string readLine(int fd) {
    std::string line;
    for (;;) {
        pollfd waiting{fd, POLLIN, 0};
        if (::poll(&waiting, 1, startLimitMilliseconds) <= 0) return {};
        char c = 0;
        if (::read(fd, &c, 1) != 1) return {};
        if (c == '\n') return line;
        line.push_back(c);
    }
}

}  // namespace

PrivateXServer::PrivateXServer(int width, int height, const char* withoutExtension) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    pid_ = ::fork();
    if (pid_ == 0) becomeServer(ends[1], screen, withoutExtension);
    ::close(ends[1]);
    const std::string number = pid_ > 0 ? readLine(ends[0]) : std::string();
    ::close(ends[0]);
    if (number.empty()) {
        kill();
        throw std::runtime_error("Xvfb cannot be started");
    }
    display_ = ":" + number;
}

PrivateXServer::~PrivateXServer() {
    kill();
}

void PrivateXServer::kill() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

bool PrivateXServer::run(const std::string& command) const {
    return std::system(("export DISPLAY=" + display_ + "; " + command).c_str()) ==
           0;  // NOLINT(bugprone-command-processor)
}

}  // namespace orbinex::test
