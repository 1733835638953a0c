#pragma once

#include "app/login_item_service.h"

namespace orbinex {

/// A login item that lives in memory. Registering what waits for approval leaves it waiting.
class SimulatedLoginItem final : public LoginItemService {
  public:
    [[nodiscard]] LoginItemStatus status() const override { return present; }
    Failure registerItem() override {
        ++registrations;
        if (!failure && present != LoginItemStatus::requiresApproval) present = LoginItemStatus::enabled;
        return failure;
    }
    Failure unregisterItem() override {
        ++unregistrations;
        if (!failure) present = LoginItemStatus::notRegistered;
        return failure;
    }
    Failure openSystemSettings() override {
        ++settingsOpened;
        return failure;
    }

    /// May be changed behind the program's back.
    LoginItemStatus present = LoginItemStatus::notRegistered;
    /// What everything that is asked runs into.
    Failure failure;
    int registrations = 0;
    int unregistrations = 0;
    int settingsOpened = 0;
};

}  // namespace orbinex
