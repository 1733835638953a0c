#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "base/main_queue.h"
#include "editor_bridge/script_host.h"

namespace orbinex {

/// Scripting hosts as child processes, which die with this program, however it dies. It needs the Qt event
/// loop of the main thread.
///
/// What a host prints on its standard error is not seen. One that closes its standard output runs on.
/// Output that its own children print after it has ended is not waited for.
///
/// A process that is destroyed is asked to end (SIGTERM), with all that it has started, and killed after
/// `grace`. It does not wait for that.
class LinuxScriptHost final : public ScriptHost {
  public:
    static constexpr std::chrono::milliseconds grace{1000};

    /// The host at `path`; it need not exist, and is looked for at each launch.
    LinuxScriptHost(std::string path, MainQueue& queue);
    /// Its processes must be destroyed before; those that have not ended by then are given the rest of
    /// their time to.
    ~LinuxScriptHost() override;

    [[nodiscard]] std::unique_ptr<Process> launch(const std::string& script, Handlers handlers) override;

  private:
    class EndingChildren;
    class Instance;

    std::string path_;
    std::unique_ptr<EndingChildren> ending_;
};

}  // namespace orbinex
