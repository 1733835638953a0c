#pragma once

#include <string>

#include "support/child_process.h"

namespace orbinex::test {

/// An X server of the test's own, without a screen that anybody sees. It takes a display number that is free
/// and ends with this object, or with the process.
class PrivateXServer {
  public:
    /// Returns when the server accepts connections; throws std::runtime_error when it cannot be started. The
    /// size in pixels. `withoutExtension` names an extension that it shall not have.
    explicit PrivateXServer(int width = 1280, int height = 900, const char* withoutExtension = nullptr);
    PrivateXServer(const PrivateXServer&) = delete;
    PrivateXServer& operator=(const PrivateXServer&) = delete;

    /// Such as ":7".
    [[nodiscard]] const std::string& display() const { return display_; }
    /// Runs a command of the shell with DISPLAY set to this server; true when it ends well.
    [[nodiscard]] bool run(const std::string& command) const;
    /// Ends the server at once.
    void kill() { process_.kill(); }

  private:
    ChildProcess process_;
    std::string display_;
};

}  // namespace orbinex::test
