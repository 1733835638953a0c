#pragma once

#include "app/app_coordinator.h"
#include "sim/recording_url_opener.h"
#include "sim/simulated_input_permission.h"
#include "sim/simulated_login_item.h"

namespace orbinex {

/// The program's place on a desktop where input is allowed and nothing starts at login.
struct SimulatedShell {
    SimulatedInputPermission permission;
    SimulatedLoginItem loginItem;
    RecordingUrlOpener urls;
    ActivationNotifier activation;

    [[nodiscard]] AppCoordinator::ShellPorts ports() { return {permission, loginItem, urls, activation}; }
};

}  // namespace orbinex
