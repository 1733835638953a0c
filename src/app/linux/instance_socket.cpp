#include "app/linux/instance_socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace orbinex {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view requestName = "open ";
constexpr std::string_view answer = "ok\n";
constexpr std::size_t longestToken = 1024;  // bytes
constexpr int backlog = 16;
constexpr int socketKind = SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC;

/// A descriptor that is closed with this object.
struct Socket {
    explicit Socket(int number) : fd(number) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() {
        if (fd >= 0) ::close(fd);
    }
    int fd;
};

/// Nothing for a path that does not fit.
std::optional<sockaddr_un> addressOf(const std::string& path) {
    sockaddr_un address{};
    if (path.size() >= sizeof address.sun_path) return std::nullopt;
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    return address;
}

bool isOwn(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

bool sendAll(int connection, std::string_view text) {
    return ::send(connection, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

CallResult awaitAnswer(int connection, Clock::time_point deadline) {
    std::string heard;
    while (heard.size() < answer.size()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd waiting{connection, POLLIN, 0};
        if (::poll(&waiting, 1, static_cast<int>(std::max<decltype(left)>(left, 0))) <= 0)
            return CallResult::silent;
        std::array<char, answer.size()> piece{};
        const auto count = ::recv(connection, piece.data(), piece.size(), 0);
        // It has gone without an answer.
        if (count <= 0) return CallResult::absent;
        heard.append(piece.data(), static_cast<std::size_t>(count));
    }
    return heard == answer ? CallResult::answered : CallResult::silent;
}

}  // namespace

std::string openRequest(std::string_view startupToken) {
    std::string token(startupToken.substr(0, longestToken));
    std::erase_if(token, [](char c) { return c == '\n' || c == '\r' || c == '\0'; });
    return std::string(requestName) + token;
}

std::optional<std::string> startupTokenOf(std::string_view line) {
    if (!line.starts_with(requestName)) return std::nullopt;
    return std::string(line.substr(requestName.size()).substr(0, longestToken));
}

int listenAt(const std::string& path) {
    const auto address = addressOf(path);
    if (!address) return -1;
    const int listener = ::socket(AF_UNIX, socketKind, 0);
    ::unlink(path.c_str());
    if (listener >= 0 &&
        ::bind(listener, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0 &&
        ::listen(listener, backlog) == 0)
        return listener;
    if (listener >= 0) ::close(listener);
    return -1;
}

int acceptOwn(int listener) {
    const int connection = ::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (connection < 0 || isOwn(connection)) return connection;
    ::close(connection);
    return -1;
}

void answerRequest(int connection) {
    sendAll(connection, answer);
}

CallResult callInstance(const std::string& path, const std::string& request,
                        std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    const auto address = addressOf(path);
    if (!address) return CallResult::absent;
    const Socket connection(::socket(AF_UNIX, socketKind, 0));
    // One that does not accept for long has its queue full, which looks as if it was busy.
    if (::connect(connection.fd, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0)
        return errno == EAGAIN ? CallResult::silent : CallResult::absent;
    if (!isOwn(connection.fd)) return CallResult::foreign;
    if (!sendAll(connection.fd, request + "\n")) return CallResult::absent;
    return awaitAnswer(connection.fd, deadline);
}

}  // namespace orbinex
