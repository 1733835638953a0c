#pragma once

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "editor_bridge/workspace.h"

namespace orbinex {

/// A desktop whose applications come, go and are brought to the front by calls.
class SimulatedWorkspace final : public Workspace {
  public:
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override { return front_; }
    [[nodiscard]] const std::vector<RunningApplication>& runningApplications() const override {
        return running_;
    }

    void launch(const RunningApplication& application) {
        running_.push_back(application);
        didLaunch.emit(application);
    }
    /// Launches it first when it does not run.
    void activate(const RunningApplication& application) {
        if (std::ranges::find(running_, application) == running_.end()) launch(application);
        front_ = application;
        didActivate.emit(application);
    }
    void terminate(const RunningApplication& application) {
        std::erase(running_, application);
        if (front_ == application) front_.reset();
        didTerminate.emit(application);
    }

  private:
    std::optional<RunningApplication> front_;
    std::vector<RunningApplication> running_;
};

}  // namespace orbinex
