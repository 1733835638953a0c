#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/bytes.h"

namespace orbinex {

/// Runs scripts under the editor's own scripting host, as child processes. Main thread only.
class ScriptHost {
  public:
    /// A running host. Destroying it terminates the host if it still runs; nothing is called any more then.
    class Process {
      public:
        Process() = default;
        Process(const Process&) = delete;
        Process& operator=(const Process&) = delete;
        virtual ~Process() = default;
        [[nodiscard]] virtual bool isRunning() const = 0;
    };

    /// Called on the main thread, from the event loop, in the order in which things happened.
    struct Handlers {
        /// What the script has printed, cut anywhere.
        std::function<void(ByteView)> onOutput;
        /// The host has ended, and all that it printed has been handed over. Called once. The process may be
        /// destroyed in it.
        std::function<void()> onExit;
    };

    ScriptHost() = default;
    ScriptHost(const ScriptHost&) = delete;
    ScriptHost& operator=(const ScriptHost&) = delete;
    virtual ~ScriptHost() = default;

    /// Runs the host with the arguments "-l", "lua", "-x" and the script's text. Null when there is no such
    /// host, or when it cannot be started; nothing is called then.
    [[nodiscard]] virtual std::unique_ptr<Process> launch(const std::string& script, Handlers handlers) = 0;
};

}  // namespace orbinex
