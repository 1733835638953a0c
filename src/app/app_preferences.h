#pragma once

#include "app/application_presence.h"
#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/published.h"
#include "base/user_defaults.h"
#include "input/command_key.h"

namespace orbinex {

/// What the user has set, read once and stored at every change. Switches that were never set are on.
///
/// The program always has a place to be reached at: showInDock and showMenuBarIcon are never both off for
/// longer than a setter takes, and where the desktop has no place for tray icons, the task bar is it whatever
/// the switches say. Setting a switch to what it is stores and announces nothing.
class AppPreferences {
  public:
    /// The settings must outlive the preferences. Both places stored as off load as both on.
    explicit AppPreferences(UserDefaults& defaults);

    /// The program's windows stand in the task bar and the window switcher.
    Published<bool, AppPreferences> showInDock;
    /// The tray icon is there.
    Published<bool, AppPreferences> showMenuBarIcon;
    /// The desktop has a place for tray icons; taken for granted until told otherwise.
    Published<bool, AppPreferences> isTrayPresent{true};
    /// Trusted iPhones are connected by themselves.
    Published<bool, AppPreferences> autoConnect;

    /// Turning it off turns the tray icon on.
    void setShowInDock(bool shown);
    /// Turning it off, also because the desktop has removed the icon, turns the task bar entry on.
    void setShowMenuBarIcon(bool shown);
    void setAutoConnect(bool enabled);
    /// The desktop's doing: no window comes to the front by it.
    void setTrayPresent(bool isPresent);
    /// Else the task bar is the only place that leads to the program.
    [[nodiscard]] bool isTrayIconSeen() const { return *showMenuBarIcon && *isTrayPresent; }

    /// From now on there are windows for the policy to hold for. Both must outlive the preferences, or be
    /// taken back with detach().
    void attach(ApplicationPresence& application, MainQueue& queue);
    void detach();
    /// Makes the activation policy what showInDock asks for, and keeps the program in front where the change
    /// would have put it behind others. Does nothing while no application is attached, or when it is so
    /// already.
    void applyActivationPolicy();

    /// The setting "commandKey": "super", else control.
    [[nodiscard]] CommandKey commandKey() const { return commandKey_; }

  private:
    [[nodiscard]] ActivationPolicy wantedPolicy() const;
    void assign(Published<bool, AppPreferences>& preference, const char* key, bool value);

    UserDefaults& defaults_;
    CommandKey commandKey_;
    ApplicationPresence* application_ = nullptr;
    MainQueue* queue_ = nullptr;
    Lifetime lifetime_;
};

}  // namespace orbinex
