#pragma once

#include <functional>
#include <string>

#include "app/linux/desktop_opener.h"
#include "app/linux/linux_bundle.h"
#include "app/linux/xdg_autostart.h"
#include "base/main_queue.h"

namespace orbinex {

class SingleInstance;

/// The program's place on a Linux desktop: what opens settings and pages for it, starts it at login and moves
/// it. All of it is found out once, when this is made.
class LinuxShell {
  public:
    /// `launchToken` is what a copy of the program is started with, so that its window comes to the front as
    /// this one's was; `quit` ends the program.
    struct Actions {
        std::function<std::string()> launchToken;
        std::function<void()> quit;
    };
    /// The queue and the instance must outlive the shell.
    LinuxShell(MainQueue& queue, SingleInstance& instance, Actions actions);
    LinuxShell(const LinuxShell&) = delete;
    LinuxShell& operator=(const LinuxShell&) = delete;

    DesktopOpener& urls() { return opener_; }
    XdgAutostart& loginItem() { return loginItem_; }
    LinuxBundle& bundle() { return bundle_; }

  private:
    ProgramPlace place_;
    UserFolders folders_;
    DesktopOpener opener_;
    XdgAutostart loginItem_;
    LinuxBundle bundle_;
};

}  // namespace orbinex
