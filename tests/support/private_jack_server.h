#pragma once

#include <string>

#include "support/child_process.h"

namespace orbinex::test {

/// A JACK server of the test's own, without sound cards. Every JACK client of this process and of its
/// children uses it, and none starts another. It ends with this object, or with the process.
///
/// JACK has room for eight names of servers on a computer. It keeps that of one that was killed until a
/// server of the same name is started: so there are four, each with a lock, and no name is left behind that
/// is not used again.
class PrivateJackServer {
  public:
    /// Takes a name and sets the environment; does not start it yet. Throws std::runtime_error when no name
    /// is free.
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
    void suspend() const { process_.signal(SIGSTOP); }

  private:
    void removeFiles() const;

    std::string name_;
    /// An open file that is locked.
    int lock_ = -1;
    ChildProcess process_;
};

}  // namespace orbinex::test
