#pragma once

#include <string>

#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace orbinex::test {

/// A sound server of the test's own with the null sinks "first" (stereo) and "second" (six channels), of
/// which the first is the default. It is not started yet, and ends with this object, or with the process.
class PrivateSoundServer {
  public:
    /// Returns when it accepts connections; throws std::runtime_error when it cannot be started.
    void start();
    /// Ends it at once.
    void kill() { process_.kill(); }
    /// What a client connects to; the same before and after a start.
    [[nodiscard]] std::string address() const { return "unix:" + socketPath(); }
    /// What another client does: the output of pactl with these arguments. Throws when it fails.
    [[nodiscard]] std::string pactl(const std::string& arguments) const;

  private:
    [[nodiscard]] std::string socketPath() const { return folder_ / "native"; }

    TemporaryFolder folder_;
    ChildProcess process_;
};

}  // namespace orbinex::test
