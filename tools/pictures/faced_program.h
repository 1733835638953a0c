#pragma once

#include <QApplication>
#include <QQuickWindow>
#include <chrono>
#include <optional>
#include <string>

#include "app/app_coordinator.h"
#include "hand/hand.h"
#include "sim/idle_editor_bridge.h"
#include "sim/memory_defaults.h"
#include "sim/recording_event_poster.h"
#include "sim/scripted_layout.h"
#include "sim/simulated_bundle.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "sim/virtual_main_queue.h"
#include "ui/interface.h"

namespace orbinex {

/// The one application object of the process, made at the first call. Windows are drawn where nobody sees
/// them unless the environment names another platform.
QApplication& application();

/// The whole program with its face, in virtual time and with phones that are in the air.
struct FacedProgram {
    using Stored = decltype(MemoryDefaults::values);
    explicit FacedProgram(Stored stored = {}, bool isInputAllowed = true,
                          BluetoothState bluetooth = BluetoothState::poweredOn);

    /// A phone in the air; near enough for three bars unless told otherwise.
    SimulatedPhone& addPhone(const std::string& name, int rssi = -50);
    /// A trusted one that is not in the air.
    TrustedDevice trust(const std::string& name, std::optional<Seconds> lastConnectedAgo = std::nullopt);
    void advance(std::chrono::nanoseconds span) { queue.advance(span); }
    [[nodiscard]] LinkPhase phase() const { return *app.centralManager.phase; }
    /// Connects a phone in the air up to that phase; warns where that does not succeed.
    void bringTo(LinkPhase phase, SimulatedPhone& phone);

    QQuickWindow& window();
    QQuickWindow& panel();

    MemoryDefaults defaults;
    VirtualMainQueue queue;
    SimulatedRadio radio;
    WakeNotifier wake;
    RecordingEventPoster poster;
    ScriptedLayoutSource layouts;
    IdleEditorBridge bridge;
    SimulatedShell shell;
    ReportingUrlOpener urls{shell.urls};
    SimulatedBundle bundle;
    AppPreferences preferences;
    AppCoordinator app{preferences,
                       {queue,
                        defaults,
                        radio,
                        wake,
                        poster,
                        layouts,
                        bridge,
                        [] { return std::string(); },
                        {shell.permission, shell.loginItem, urls, shell.activation}}};
    AppRelocationManager relocation{queue, defaults, bundle};
    PairingQuestion pairing;
    DesktopPresence presence;
    int quits = 0;
    Interface face{{queue, defaults, app, relocation, pairing, urls, presence, [this] { ++quits; }}};
};

}  // namespace orbinex
