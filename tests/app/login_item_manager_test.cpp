#include "app/login_item_manager.h"

#include <gtest/gtest.h>

#include "sim/simulated_login_item.h"

namespace orbinex {
namespace {

using Status = LoginItemStatus;

TEST(LoginItemManager, changesTheRegistrationOnlyWhereItDiffers) {
    const struct {
        Status before;
        bool enable;
        int registrations;
        int unregistrations;
        Status after;
    } rows[] = {
        {Status::notRegistered, true, 1, 0, Status::enabled},
        {Status::notRegistered, false, 0, 0, Status::notRegistered},
        {Status::enabled, true, 0, 0, Status::enabled},
        {Status::enabled, false, 0, 1, Status::notRegistered},
        // It stays with the person to approve.
        {Status::requiresApproval, true, 1, 0, Status::requiresApproval},
        {Status::requiresApproval, false, 0, 1, Status::notRegistered},
        {Status::notFound, true, 1, 0, Status::enabled},
        {Status::notFound, false, 0, 1, Status::notRegistered},
    };
    for (const auto& row : rows) {
        SimulatedLoginItem item;
        ActivationNotifier activation;
        LoginItemManager manager(item, activation);
        // Somebody changes it behind the manager's back: what counts is how it is.
        item.present = row.before;
        manager.setEnabled(row.enable);
        EXPECT_EQ(item.registrations, row.registrations) << static_cast<int>(row.before) << row.enable;
        EXPECT_EQ(item.unregistrations, row.unregistrations) << static_cast<int>(row.before) << row.enable;
        EXPECT_EQ(*manager.status, row.after);
        EXPECT_EQ(manager.isOn(), row.after == Status::enabled || row.after == Status::requiresApproval);
    }
}

TEST(LoginItemManager, tellsWhyAChangeFailedUntilOneSucceeds) {
    SimulatedLoginItem item;
    ActivationNotifier activation;
    LoginItemManager manager(item, activation);
    EXPECT_EQ(*manager.lastError, std::nullopt);
    item.failure = "Permission denied";
    manager.setEnabled(true);
    EXPECT_EQ(*manager.lastError, "Permission denied");
    EXPECT_EQ(*manager.status, Status::notRegistered);
    item.failure.reset();
    manager.setEnabled(true);
    EXPECT_EQ(*manager.lastError, std::nullopt);
    EXPECT_EQ(*manager.status, Status::enabled);
    item.failure = "No settings";
    manager.openSystemSettingsLoginItems();
    EXPECT_EQ(*manager.lastError, "No settings");
}

TEST(LoginItemManager, seesWhatWasApprovedElsewhereWhenThePersonComesBack) {
    SimulatedLoginItem item;
    item.present = Status::requiresApproval;
    ActivationNotifier activation;
    {
        LoginItemManager manager(item, activation);
        manager.openSystemSettingsLoginItems();
        EXPECT_EQ(item.settingsOpened, 1);
        item.present = Status::enabled;
        EXPECT_EQ(*manager.status, Status::requiresApproval);
        activation.didBecomeActive.emit();
        EXPECT_EQ(*manager.status, Status::enabled);
    }
    EXPECT_FALSE(activation.didBecomeActive.hasObservers());
}

}  // namespace
}  // namespace orbinex
