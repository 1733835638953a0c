#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/main_queue.h"
#include "editor_bridge/linux/desktop_files.h"
#include "editor_bridge/linux/editor_processes.h"
#include "editor_bridge/linux/x11_windows.h"
#include "editor_bridge/workspace.h"

namespace orbinex {

/// The applications of an X desktop, by the windows that its window manager lists. A known editor counts also
/// while it has a process but no window, and such processes are all that counts where there is no window
/// manager or no X server. Nothing is in front there. Needs the Qt event loop.
class X11Workspace final : public Workspace {
  public:
    /// Window managers make no window the active one for a moment whenever it is another's turn; so long may
    /// that last.
    static constexpr std::chrono::milliseconds settlingTime{100};

    /// On the display of that name (empty: the one in the environment), with the processes of that folder.
    /// The lists are complete at once, and nothing is told of what they begin with.
    explicit X11Workspace(MainQueue& queue, const std::string& displayName = {},
                          DesktopFiles desktopFiles = DesktopFiles::ofSession(),
                          const std::string& processes = "/proc");

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override { return front_; }
    [[nodiscard]] const std::vector<RunningApplication>& runningApplications() const override {
        return running_;
    }

  private:
    void update();
    void updateFront();
    [[nodiscard]] std::vector<RunningApplication> present();
    [[nodiscard]] std::optional<RunningApplication> activeApplication();
    const RunningApplication& applicationOf(X11Windows::Window window);
    [[nodiscard]] RunningApplication identify(const WindowFacts& facts);

    MainQueue& queue_;
    DesktopFiles desktopFiles_;
    EditorProcesses processes_;
    X11Windows windows_;
    struct Identified {
        WindowFacts facts;
        RunningApplication application;
    };
    std::map<X11Windows::Window, Identified> identified_;
    std::vector<RunningApplication> running_;
    std::optional<RunningApplication> front_;
    Timer settling_;
};

}  // namespace orbinex
