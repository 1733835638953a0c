#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

namespace orbinex::test {

using Milliseconds = std::chrono::milliseconds;

/// A program that runs beside the scenario, with its standard streams on pipes. All programs together make a
/// conversation: every line that one of them prints or is sent appears on the scenario's own output, with the
/// time and the program's name, as it happens. It ends with this object, and with the scenario however that
/// ends.
///
/// Time is real here. Nothing sleeps: a wait reads what every program prints, and ends as soon as it can.
class Process {
  public:
    using Environment = std::map<std::string, std::string>;

    /// Starts a program, found as the shell does, with this environment besides our own. `name` is what the
    /// conversation calls it. With a `logFile` all output is appended there, out of the conversation. A
    /// program that cannot be started prints why and ends with status 127.
    Process(std::string name, const std::vector<std::string>& command, const Environment& environment = {},
            const std::string& logFile = {});
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    /// Kills it if it still runs.
    ~Process();

    /// Writes a line to its standard input. False when it does not read any more.
    bool send(std::string_view line);
    /// Lets its standard input end.
    void closeInput();

    /// Reads until a line of its standard output, after those found by earlier waits, contains the text or
    /// has a match of the pattern. The failure tells what it printed instead.
    testing::AssertionResult waitFor(std::string_view text, Milliseconds limit);
    testing::AssertionResult waitFor(const std::regex& pattern, Milliseconds limit);
    /// The line that the latest wait found; empty when it found none.
    [[nodiscard]] const std::string& found() const { return found_; }
    /// Lines from here on count for the next wait, those before do not.
    void skipToNow();

    /// Every line of standard output so far. What it printed without a line's end counts once it has ended.
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

    /// Asks it to end, as a session does.
    void terminate() const;
    /// kill -9; returns when it is gone.
    void kill();
    /// Its exit status, or the negative number of the signal that ended it; nothing when it still runs after
    /// the limit.
    std::optional<int> waitForEnd(Milliseconds limit);
    [[nodiscard]] bool isRunning() const { return pid_ > 0 && !status_; }

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// What it has used of the processor, in its own code and in the kernel's; zero once it has ended.
    [[nodiscard]] Milliseconds processorTime() const;
    /// Zero once it has ended.
    [[nodiscard]] int openDescriptors() const;

  private:
    friend bool waitUntil(const std::function<bool()>& condition, Milliseconds limit);
    struct Stream {
        int fd = -1;
        std::string unfinished;
    };

    template <class Matches>
    testing::AssertionResult waitForLine(const std::string& wanted, Milliseconds limit, Matches matches);
    /// Waits for something to happen in any program, for no longer than this, and takes it.
    static void pump(Milliseconds limit);
    void readStream(Stream& stream);
    void takeLines(Stream& stream);
    void noteEnd();

    std::string name_;
    pid_t pid_ = -1;
    int endFd_ = -1;
    int input_ = -1;
    Stream output_;
    Stream errors_;
    std::vector<std::string> lines_;
    std::size_t nextLine_ = 0;
    std::string found_;
    std::optional<int> status_;
};

/// Reads what all programs print until the condition holds; false when it does not within the limit.
bool waitUntil(const std::function<bool()>& condition, Milliseconds limit);

}  // namespace orbinex::test
