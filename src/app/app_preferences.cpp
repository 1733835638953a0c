#include "app/app_preferences.h"

namespace orbinex {

namespace {

constexpr const char* showInDockKey = "showInDock";
constexpr const char* showMenuBarIconKey = "showMenuBarIcon";
constexpr const char* autoConnectKey = "autoConnect";
constexpr const char* commandKeyKey = "commandKey";

bool storedOrOn(const UserDefaults& defaults, const char* key) {
    return defaults.boolean(key).value_or(true);
}

/// A place that is off where the other is off too is on.
bool storedPlace(const UserDefaults& defaults, const char* key, const char* otherKey) {
    return storedOrOn(defaults, key) || !storedOrOn(defaults, otherKey);
}

}  // namespace

AppPreferences::AppPreferences(UserDefaults& defaults)
    : showInDock(storedPlace(defaults, showInDockKey, showMenuBarIconKey)),
      showMenuBarIcon(storedPlace(defaults, showMenuBarIconKey, showInDockKey)),
      autoConnect(storedOrOn(defaults, autoConnectKey)),
      defaults_(defaults),
      commandKey_(defaults.string(commandKeyKey) == "super" ? CommandKey::super : CommandKey::control) {}

void AppPreferences::assign(Published<bool, AppPreferences>& preference, const char* key, bool value) {
    preference = value;
    defaults_.setBoolean(key, value);
}

void AppPreferences::setShowInDock(bool shown) {
    if (shown == *showInDock) return;
    assign(showInDock, showInDockKey, shown);
    if (!*showInDock && !*showMenuBarIcon) assign(showMenuBarIcon, showMenuBarIconKey, true);
    applyActivationPolicy();
}

void AppPreferences::setShowMenuBarIcon(bool shown) {
    if (shown == *showMenuBarIcon) return;
    assign(showMenuBarIcon, showMenuBarIconKey, shown);
    if (*showMenuBarIcon || *showInDock) return;
    assign(showInDock, showInDockKey, true);
    applyActivationPolicy();
}

void AppPreferences::setAutoConnect(bool enabled) {
    if (enabled != *autoConnect) assign(autoConnect, autoConnectKey, enabled);
}

void AppPreferences::attach(ApplicationPresence& application, MainQueue& queue) {
    application_ = &application;
    queue_ = &queue;
}

void AppPreferences::detach() {
    application_ = nullptr;
    queue_ = nullptr;
}

void AppPreferences::setTrayPresent(bool isPresent) {
    if (isPresent == *isTrayPresent) return;
    isTrayPresent = isPresent;
    if (application_) application_->setActivationPolicy(wantedPolicy());
}

ActivationPolicy AppPreferences::wantedPolicy() const {
    return *showInDock || !isTrayIconSeen() ? ActivationPolicy::regular : ActivationPolicy::accessory;
}

void AppPreferences::applyActivationPolicy() {
    if (!application_) return;
    const auto wanted = wantedPolicy();
    if (application_->activationPolicy() == wanted) return;
    application_->setActivationPolicy(wanted);
    if (wanted == ActivationPolicy::regular) return application_->activate();
    // A window that leaves the task bar falls behind; it comes back once the desktop has done that.
    queue_->post(lifetime_.guard([this] {
        if (!application_) return;
        application_->activate();
        application_->bringVisibleWindowToFront();
    }));
}

}  // namespace orbinex
