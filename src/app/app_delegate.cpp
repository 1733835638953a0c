#include "app/app_delegate.h"

#include <utility>

namespace orbinex {

AppDelegate::AppDelegate(AppPreferences& preferences, AppRelocationManager& relocation,
                         OpenMainWindow openMainWindow)
    : preferences_(preferences), relocation_(relocation), openMainWindow_(std::move(openMainWindow)) {}

void AppDelegate::willFinishLaunching() {
    preferences_.applyActivationPolicy();
}

void AppDelegate::didFinishLaunching(bool isLoginLaunch) {
    relocation_.offerMoveIfNeeded();
    if (!isLoginLaunch) openMainWindow_();
}

void AppDelegate::handleSecondLaunch() {
    openMainWindow_();
}

}  // namespace orbinex
