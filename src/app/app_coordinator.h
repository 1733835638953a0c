#pragma once

#include <functional>
#include <string>

#include "app/accessibility_permission_manager.h"
#include "app/app_preferences.h"
#include "app/login_item_manager.h"
#include "input/input_injection_manager.h"
#include "link/central_ble_manager.h"
#include "trust/trusted_device_store.h"

namespace orbinex {

/// Owns the managers and every connection between them. The members stand in the order in which they come
/// into being; the link is last, so that it goes first and the injector lets go of what it holds.
///
/// | from | event | to |
/// |---|---|---|
/// | link | decoded input packet | injector: handle |
/// | link | a connected session ended | injector: releaseAll |
/// | injector | pressed key stroke | editor bridge: handleTransportKey |
/// | preferences | autoConnect changed | link: setAutoConnectEnabled |
/// | editor bridge | application, telemetry, session bytes | link (connected by the link itself) |
/// | link | editor command, session up or down | editor bridge |
class AppCoordinator {
  public:
    /// What the program's own place on the desktop stands on.
    struct ShellPorts {
        InputPermission& inputPermission;
        LoginItemService& loginItem;
        UrlOpener& urls;
        ActivationNotifier& activation;
    };
    /// What the managers stand on; all of it must outlive the coordinator.
    struct Ports {
        MainQueue& queue;
        UserDefaults& defaults;
        BluetoothCentral& central;
        WakeNotifier& wake;
        EventPoster& poster;
        KeyboardLayoutSource& layouts;
        EditorBridge& bridge;
        /// This computer's name, empty when it has none.
        std::function<std::string()> computerName;
        ShellPorts shell;
    };

    AppCoordinator(AppPreferences& preferences, const Ports& ports);
    AppCoordinator(const AppCoordinator&) = delete;
    AppCoordinator& operator=(const AppCoordinator&) = delete;
    ~AppCoordinator();

    AppPreferences& preferences;
    TrustedDeviceStore trustStore;
    InputInjectionManager inputManager;
    AccessibilityPermissionManager accessibilityManager;
    LoginItemManager loginItemManager;
    CentralBLEManager centralManager;

  private:
    Subscription autoConnectChange_;
};

}  // namespace orbinex
