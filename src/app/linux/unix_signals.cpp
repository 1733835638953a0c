#include "app/linux/unix_signals.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace orbinex {

namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// The writing end of the pipe; all that a signal handler may touch.
volatile std::sig_atomic_t signalPipe = -1;

void handleSignal(int number) {
    const int savedError = errno;
    const auto byte = static_cast<unsigned char>(number);
    // A full pipe holds enough reasons to end.
    [[maybe_unused]] const auto written = write(signalPipe, &byte, 1);
    errno = savedError;
}

}  // namespace

struct UnixSignals::Handlers {
    std::array<int, 2> pipe{-1, -1};
    std::array<struct sigaction, endingSignals.size()> former{};
};

UnixSignals::UnixSignals(std::function<void(int)> onSignal)
    : handlers_(std::make_unique<Handlers>()), onSignal_(std::move(onSignal)) {
    if (pipe2(handlers_->pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pipe for signals");
    }
    signalPipe = handlers_->pipe[1];
    struct sigaction action {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        sigaction(endingSignals[i], nullptr, &handlers_->former[i]);
        // Whoever started the program has said that it is to live on: nohup, or a shell that has it in the
        // background.
        if (handlers_->former[i].sa_handler == SIG_IGN) continue;
        sigaction(endingSignals[i], &action, nullptr);
    }
    watch_ = std::make_unique<FdWatch>(handlers_->pipe[0], [this] {
        unsigned char byte = 0;
        while (read(handlers_->pipe[0], &byte, 1) == 1) onSignal_(byte);
    });
}

UnixSignals::~UnixSignals() {
    watch_.reset();
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        sigaction(endingSignals[i], &handlers_->former[i], nullptr);
    }
    signalPipe = -1;
    for (const int fd : handlers_->pipe) close(fd);
}

}  // namespace orbinex
