#pragma once

#include <string>

#include <sys/types.h>

namespace orbinex::test {

/// A JACK server of the test's own, without sound cards, named after this process. Every JACK client of this
/// process and of its children uses it, and none starts another. It ends with this object, or with the
/// process.
class PrivateJackServer {
  public:
    /// Sets the environment; does not start it yet.
    PrivateJackServer();
    PrivateJackServer(const PrivateJackServer&) = delete;
    PrivateJackServer& operator=(const PrivateJackServer&) = delete;
    ~PrivateJackServer();

    /// Returns when it accepts clients; throws std::runtime_error when it cannot be started.
    void start();
    /// Asks it to end, and returns when it has.
    void stop();
    /// Ends it at once.
    void kill();
    /// It stands still and answers nobody, until it is killed.
    void suspend() const;

  private:
    bool endsWith(int signal);
    void removeFiles() const;
    /// JACK has room for eight names of servers on a computer and keeps that of one that was killed, until a
    /// server of the same name has ended by itself.
    void giveBackName();
    [[nodiscard]] bool isAccepting() const;

    std::string name_;
    pid_t pid_ = -1;
    bool wasKilled_ = false;
};

}  // namespace orbinex::test
