#include "support/private_x_server.h"

#include <array>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

constexpr int startLimitMilliseconds = 20'000;

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
    std::vector<std::string> command{"Xvfb",     "-displayfd", std::to_string(ends[1]),
                                     "-noreset", "-nolisten",  "tcp",
                                     "-screen",  "0",          screen};
    if (withoutExtension) command.insert(command.end(), {"-extension", withoutExtension});
    process_ = ChildProcess(command);
    ::close(ends[1]);
    const std::string number = readLine(ends[0]);
    ::close(ends[0]);
    if (number.empty()) throw std::runtime_error("Xvfb cannot be started");
    display_ = ":" + number;
}

bool PrivateXServer::run(const std::string& command) const {
    return std::system(("export DISPLAY=" + display_ + "; " + command).c_str()) ==
           0;  // NOLINT(bugprone-command-processor)
}

}  // namespace orbinex::test
