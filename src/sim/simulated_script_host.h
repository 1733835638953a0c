#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "editor_bridge/script_host.h"

namespace orbinex {

/// A host whose processes print and end when they are told to.
class SimulatedScriptHost final : public ScriptHost {
  public:
    [[nodiscard]] std::unique_ptr<Process> launch(const std::string& script, Handlers handlers) override {
        if (!isInstalled) return nullptr;
        scripts.push_back(script);
        return std::make_unique<Instance>(*this, std::move(handlers));
    }

    /// The process that was launched last and still runs.
    [[nodiscard]] bool isRunning() const { return current_ != nullptr; }
    void print(std::string_view text) {
        if (!current_) return;
        // The handler may end the process that it belongs to.
        const auto onOutput = current_->handlers.onOutput;
        onOutput({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    /// It ends by itself.
    void exit() {
        if (!current_) return;
        auto* const ended = std::exchange(current_, nullptr);
        ended->isRunningNow = false;
        const auto onExit = ended->handlers.onExit;
        onExit();
    }

    bool isInstalled = true;
    /// Of every launch.
    std::vector<std::string> scripts;
    /// Processes that were destroyed while they ran.
    int terminated = 0;

  private:
    struct Instance final : Process {
        Instance(SimulatedScriptHost& owner, Handlers all) : host(owner), handlers(std::move(all)) {
            host.current_ = this;
        }
        ~Instance() override {
            if (host.current_ != this) return;
            host.current_ = nullptr;
            ++host.terminated;
        }
        [[nodiscard]] bool isRunning() const override { return isRunningNow; }

        SimulatedScriptHost& host;
        Handlers handlers;
        bool isRunningNow = true;
    };
    Instance* current_ = nullptr;
};

}  // namespace orbinex
