#pragma once

#include <chrono>
#include <string>

#include "app/activation_notifier.h"
#include "app/input_permission.h"
#include "app/url_opener.h"
#include "base/main_queue.h"
#include "base/published.h"

namespace orbinex {

/// Whether input control is allowed. It is looked at when the person comes back to the program, and after
/// they have asked for it every two seconds for five minutes, so that the flag follows soon.
class AccessibilityPermissionManager {
  public:
    static constexpr std::chrono::seconds pollInterval{2};
    static constexpr std::chrono::seconds pollLimit{300};

    /// All must outlive the manager.
    AccessibilityPermissionManager(MainQueue& queue, InputPermission& permission, UrlOpener& urls,
                                   ActivationNotifier& activation);
    AccessibilityPermissionManager(const AccessibilityPermissionManager&) = delete;
    AccessibilityPermissionManager& operator=(const AccessibilityPermissionManager&) = delete;

    Published<bool, AccessibilityPermissionManager> isAccessibilityGranted;
    /// What is missing and what can be done, as the platform tells it; empty while it is granted, and where
    /// there is nothing to tell. Follows the flag.
    Published<std::string, AccessibilityPermissionManager> explanation;

    /// Looks without asking; an unchanged answer is not announced again.
    void refresh();
    /// Asks, and polls unless that granted it at once.
    void requestAccess();
    /// Opens the settings where it is granted, and polls; also when they cannot be opened.
    void openAccessibilitySettings();
    [[nodiscard]] bool isPolling() const { return pollTimer_.isActive(); }

  private:
    void explain();
    void startPolling();

    MainQueue& queue_;
    InputPermission& permission_;
    UrlOpener& urls_;
    Timer pollTimer_;
    Subscription activationObserver_;
};

}  // namespace orbinex
