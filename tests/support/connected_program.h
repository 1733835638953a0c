#pragma once

#include <string>

#include "app/app_coordinator.h"
#include "sim/idle_editor_bridge.h"
#include "sim/memory_defaults.h"
#include "sim/simulated_shell.h"
#include "support/direct_central.h"

namespace orbinex::test {

/// The whole program between a phone's notifications and the desktop it is given.
struct ConnectedProgram {
    ConnectedProgram(MainQueue& mainQueue, EventPoster& poster, KeyboardLayoutSource& layouts)
        : queue(mainQueue),
          app(preferences, {mainQueue, defaults, central, wake, poster, layouts, bridge,
                            [] { return std::string(); }, shell.ports()}) {}

    /// Brings up the session; `runQueue` runs what the queue has due. False when the session does not come.
    template <class RunQueue>
    [[nodiscard]] bool connect(RunQueue runQueue) {
        constexpr int enoughTurns = 100;
        for (int turn = 0; turn < enoughTurns && *app.centralManager.phase != LinkPhase::connected; ++turn) {
            runQueue();
            app.centralManager.connectPeripheral(central.phone, "iPhone");
        }
        return *app.centralManager.phase == LinkPhase::connected;
    }

    MainQueue& queue;
    MemoryDefaults defaults;
    SimulatedShell shell;
    AppPreferences preferences{defaults};
    DirectCentral central{queue};
    WakeNotifier wake;
    IdleEditorBridge bridge;
    AppCoordinator app;
};

}  // namespace orbinex::test
