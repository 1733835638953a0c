#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "editor_bridge/linux/descriptor.h"

namespace orbinex {

/// A child process, until it is reaped. It leads a process group of its own.
class ChildProcess {
  public:
    struct Launched;

    /// Runs the program at `path` with these arguments (the program's name is put before them): standard
    /// input and error are the null device, standard output is a pipe, and nothing else of ours is inherited
    /// but the environment and the working directory. Nothing when it cannot be started.
    ///
    /// The kernel kills it when the calling *thread* ends, so only the main thread may call this.
    static std::optional<Launched> launch(const std::string& path, const std::vector<std::string>& arguments);

    ChildProcess(ChildProcess&&) = default;
    ChildProcess& operator=(ChildProcess&&) = delete;
    /// One that was not reaped before is killed and reaped.
    ~ChildProcess();

    /// Becomes readable when the process has ended.
    [[nodiscard]] int exitDescriptor() const { return exit_.get(); }
    /// To the process and what it has started in its group.
    void signal(int number) const;
    /// True if it has ended within that time.
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds atMost) const;
    /// Waits until it has ended.
    void reap();

  private:
    ChildProcess(pid_t pid, Descriptor exit) : pid_(pid), exit_(std::move(exit)) {}

    pid_t pid_;
    /// Gone once it is reaped: the number may be another's then.
    Descriptor exit_;
};

struct ChildProcess::Launched {
    ChildProcess process;
    /// What it prints; reading never blocks.
    Descriptor output;
};

}  // namespace orbinex
