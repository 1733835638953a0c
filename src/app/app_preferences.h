#pragma once

#include "base/published.h"
#include "base/user_defaults.h"
#include "input/command_key.h"

namespace orbinex {

/// What the user has set, read once and stored at every change.
class AppPreferences {
  public:
    /// The settings must outlive the preferences.
    explicit AppPreferences(UserDefaults& defaults);

    /// Trusted iPhones are connected by themselves. True when never set. Assign through setAutoConnect.
    Published<bool> autoConnect;
    /// Setting the present value does nothing.
    void setAutoConnect(bool enabled);

    /// The setting "commandKey": "super", else control.
    [[nodiscard]] CommandKey commandKey() const { return commandKey_; }

  private:
    UserDefaults& defaults_;
    CommandKey commandKey_;
};

}  // namespace orbinex
