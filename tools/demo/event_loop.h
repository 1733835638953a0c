#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace orbinex::demo {

/// Thrown out of a wait when the demo must end before its story does.
struct Ended {
    std::string reason;
    int exitStatus = 1;
};

/// Runs the Qt event loop until something is the case. The story waits for what it can see, never for time to
/// pass.
class EventLoop {
  public:
    using Milliseconds = std::chrono::milliseconds;

    /// All waits together last no longer than this: a story in which much goes wrong still ends.
    explicit EventLoop(Milliseconds patience);

    /// Asks every few milliseconds; false when the condition does not hold within the limit. Throws Ended
    /// once end() was called.
    bool waitUntil(const std::function<bool()>& condition, Milliseconds limit);
    /// Lets time pass for somebody who watches.
    void linger(Milliseconds duration);
    /// Goes on until end() is called, however long that takes.
    Ended run();
    /// Makes the wait that is going on, or the next one, throw. The first call counts.
    void end(Ended why);

  private:
    std::chrono::steady_clock::time_point deadline_;
    std::optional<Ended> ended_;
};

}  // namespace orbinex::demo
