#pragma once

#include <chrono>
#include <csignal>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace orbinex::test {

/// A program that runs beside a test. It ends with this object at the latest, and with the test however that
/// ends.
class ChildProcess {
  public:
    struct Options {
        /// Its standard streams; -1 is /dev/null.
        int input = -1;
        int output = -1;
        int errors = -1;
        /// Beside the test's own.
        std::map<std::string, std::string> environment = {};
        /// What it gets when the test dies.
        int signalOfDeath = SIGKILL;
    };

    ChildProcess() = default;
    /// The program is found as the shell does; it inherits descriptors that are not closed on execution.
    /// Returns once it runs, and throws std::runtime_error when it cannot.
    ChildProcess(std::vector<std::string> command, const Options& options);
    explicit ChildProcess(std::vector<std::string> command) : ChildProcess(std::move(command), Options{}) {}
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess() { kill(); }

    /// -1 before and after.
    [[nodiscard]] pid_t pid() const { return pid_; }
    /// False once it has ended.
    bool isRunning();
    void signal(int number) const;
    /// Sends a signal and waits; false when it still runs after the limit.
    bool endsBy(int number, std::chrono::milliseconds limit);
    /// Ends it at once.
    void kill();
    /// True once it accepts connections at this socket of the file system; false when it ends before, or does
    /// not come to that in 20 seconds.
    bool comesToAccept(const std::string& socketPath);

  private:
    pid_t pid_ = -1;
};

/// Whether somebody accepts connections at a socket of the file system.
bool isAccepting(const std::string& socketPath);

}  // namespace orbinex::test
