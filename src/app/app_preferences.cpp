#include "app/app_preferences.h"

namespace orbinex {

namespace {

constexpr const char* autoConnectKey = "autoConnect";
constexpr const char* commandKeyKey = "commandKey";

}  // namespace

AppPreferences::AppPreferences(UserDefaults& defaults)
    : autoConnect(defaults.boolean(autoConnectKey).value_or(true)),
      defaults_(defaults),
      commandKey_(defaults.string(commandKeyKey) == "super" ? CommandKey::super : CommandKey::control) {}

void AppPreferences::setAutoConnect(bool enabled) {
    if (enabled == *autoConnect) return;
    autoConnect = enabled;
    defaults_.setBoolean(autoConnectKey, enabled);
}

}  // namespace orbinex
