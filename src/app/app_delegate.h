#pragma once

#include <functional>

#include "app/app_preferences.h"
#include "app/app_relocation_manager.h"

namespace orbinex {

/// What happens around the program's launch, and when it is opened again while it runs. The program lives on
/// without windows; the tray icon, or starting it again, leads back to them.
class AppDelegate {
  public:
    /// Brings the main window to the front, or opens it, and activates the program.
    using OpenMainWindow = std::function<void()>;

    /// All must outlive the delegate.
    AppDelegate(AppPreferences& preferences, AppRelocationManager& relocation, OpenMainWindow openMainWindow);

    /// Before anything is shown.
    void willFinishLaunching();
    /// Once the coordinator stands. A launch at login shows no window.
    void didFinishLaunching(bool isLoginLaunch);
    /// The program was opened again, from a launcher or a terminal. Whoever did that wants to see it, also
    /// where its window is open, behind others or on another desktop.
    void handleSecondLaunch();

  private:
    AppPreferences& preferences_;
    AppRelocationManager& relocation_;
    OpenMainWindow openMainWindow_;
};

}  // namespace orbinex
