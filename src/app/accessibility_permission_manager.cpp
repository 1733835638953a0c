#include "app/accessibility_permission_manager.h"

#include <utility>

#include "app/system_settings_urls.h"

namespace orbinex {

AccessibilityPermissionManager::AccessibilityPermissionManager(MainQueue& queue, InputPermission& permission,
                                                               UrlOpener& urls,
                                                               ActivationNotifier& activation)
    : isAccessibilityGranted(false), queue_(queue), permission_(permission), urls_(urls) {
    refresh();
    activationObserver_ = activation.didBecomeActive.subscribe([this] { refresh(); });
}

void AccessibilityPermissionManager::refresh() {
    const bool granted = permission_.isGranted();
    if (granted) pollTimer_.cancel();
    if (granted != *isAccessibilityGranted) isAccessibilityGranted = granted;
    explain();
}

void AccessibilityPermissionManager::requestAccess() {
    const bool granted = permission_.request();
    if (granted) pollTimer_.cancel();
    isAccessibilityGranted = granted;
    explain();
    if (!granted) startPolling();
}

void AccessibilityPermissionManager::openAccessibilitySettings() {
    urls_.open(accessibilitySettingsUrl);
    startPolling();
}

void AccessibilityPermissionManager::explain() {
    auto text = *isAccessibilityGranted ? std::string() : permission_.explanation();
    if (text != *explanation) explanation = std::move(text);
}

void AccessibilityPermissionManager::startPolling() {
    const auto deadline = queue_.uptime() + pollLimit;
    pollTimer_ = queue_.every(pollInterval, [this, deadline] {
        refresh();
        if (queue_.uptime() > deadline) pollTimer_.cancel();
    });
}

}  // namespace orbinex
