#include "app/login_item_manager.h"

namespace orbinex {

LoginItemManager::LoginItemManager(LoginItemService& service, ActivationNotifier& activation)
    : status(service.status()),
      service_(service),
      activationObserver_(activation.didBecomeActive.subscribe([this] { status = service_.status(); })) {}

bool LoginItemManager::isOn() const {
    return *status == LoginItemStatus::enabled || *status == LoginItemStatus::requiresApproval;
}

void LoginItemManager::setEnabled(bool enable) {
    lastError = std::nullopt;
    const auto present = service_.status();
    const auto wanted = enable ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
    if (present != wanted) {
        if (auto failure = enable ? service_.registerItem() : service_.unregisterItem())
            lastError = std::move(failure);
    }
    status = service_.status();
}

void LoginItemManager::openSystemSettingsLoginItems() {
    lastError = service_.openSystemSettings();
}

}  // namespace orbinex
