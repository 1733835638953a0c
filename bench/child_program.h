#pragma once

#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace orbinex {

/// A program in a process of its own, and what the kernel tells of it. Nobody sees its errors. It is asked to
/// end with this object, and ends with this process.
class ChildProgram {
  public:
    using Environment = std::map<std::string, std::string>;

    /// `command` is the program's path or name and its arguments; `changes` are made to this process's
    /// environment. Throws std::runtime_error when there is no room for a process.
    explicit ChildProgram(std::vector<std::string> command, const Environment& changes = {});
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;
    ~ChildProgram();

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// Types a line into its standard input.
    void send(std::string_view line) const;
    /// Waits until it has printed this, from where the last wait ended; false when it does not.
    [[nodiscard]] bool hasPrinted(std::string_view text, std::chrono::milliseconds limit);
    [[nodiscard]] bool isRunning();

    /// What its threads have used since they began; of threads that have ended, nothing.
    [[nodiscard]] std::chrono::nanoseconds processorTime() const;
    /// How often its threads have gone to sleep, and hence have been woken up.
    [[nodiscard]] long wakeUps() const;
    /// Its memory, with pages that it shares counted in parts: PSS, in KiB.
    [[nodiscard]] long proportionalMemory() const;
    /// The first process that it has started and that still runs; 0 for none.
    [[nodiscard]] pid_t firstChild() const;

  private:
    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string printed_;
    bool hasEnded_ = false;
};

/// The same of any process.
std::chrono::nanoseconds processorTime(pid_t pid);

}  // namespace orbinex
