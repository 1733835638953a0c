#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/signal.h"

namespace orbinex {

/// One application of the desktop.
struct RunningApplication {
    /// A bundle identifier for the editors that are known; for any other application what the platform
    /// identifies it by (on Linux the id of its desktop file, else its window class). May be empty.
    std::string bundleID;
    /// As a person reads it; may be empty.
    std::string localizedName;

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

/// The applications of the desktop. Main thread only; the signals are emitted on it, from the event loop.
class Workspace {
  public:
    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// Nothing while no application has the focus, as between two windows.
    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() const = 0;
    /// Kept up to date by the implementation, so that asking costs nothing.
    [[nodiscard]] virtual const std::vector<RunningApplication>& runningApplications() const = 0;

    /// This application has become the frontmost one; also when it was that before.
    Signal<RunningApplication> didActivate;
    /// The list holds it already.
    Signal<RunningApplication> didLaunch;
    /// The list holds it no more.
    Signal<RunningApplication> didTerminate;
};

}  // namespace orbinex
