#pragma once

#include <functional>
#include <memory>

#include "app/linux/fd_watch.h"

namespace orbinex {

/// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into a call on the main thread;
/// those that the process was started to ignore stay ignored. One at a time in a process; its end restores
/// what the signals did before.
class UnixSignals {
  public:
    /// `onSignal` gets the signal's number.
    explicit UnixSignals(std::function<void(int)> onSignal);
    UnixSignals(const UnixSignals&) = delete;
    UnixSignals& operator=(const UnixSignals&) = delete;
    ~UnixSignals();

  private:
    struct Handlers;
    std::unique_ptr<Handlers> handlers_;
    std::function<void(int)> onSignal_;
    std::unique_ptr<FdWatch> watch_;
};

}  // namespace orbinex
