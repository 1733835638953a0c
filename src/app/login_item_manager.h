#pragma once

#include <optional>
#include <string>

#include "app/activation_notifier.h"
#include "app/login_item_service.h"
#include "base/published.h"

namespace orbinex {

/// Open at login: changes the registration and mirrors what the platform says of it, also of what the person
/// has changed elsewhere, as soon as they come back to the program.
class LoginItemManager {
  public:
    /// Both must outlive the manager.
    LoginItemManager(LoginItemService& service, ActivationNotifier& activation);
    LoginItemManager(const LoginItemManager&) = delete;
    LoginItemManager& operator=(const LoginItemManager&) = delete;

    Published<LoginItemStatus, LoginItemManager> status;
    /// Why the last change, or the last look at the desktop's settings, failed; nothing when it succeeded.
    Published<std::optional<std::string>, LoginItemManager> lastError;

    /// A switch shows as on: the person wants it, whether or not the desktop lets it.
    [[nodiscard]] bool isOn() const;
    void setEnabled(bool enable);
    void openSystemSettingsLoginItems();

  private:
    LoginItemService& service_;
    Subscription activationObserver_;
};

}  // namespace orbinex
