#include "app/app_coordinator.h"

namespace orbinex {

AppCoordinator::AppCoordinator(AppPreferences& appPreferences, const Ports& ports)
    : preferences(appPreferences),
      trustStore(ports.defaults, "trustedDevices.v1"),
      inputManager(ports.poster, ports.layouts),
      accessibilityManager(ports.queue, ports.shell.inputPermission, ports.shell.urls,
                           ports.shell.activation),
      loginItemManager(ports.shell.loginItem, ports.shell.activation),
      centralManager(trustStore, {ports.queue, ports.central, ports.wake, ports.bridge, ports.computerName}) {
    centralManager.setAutoConnectEnabled(*preferences.autoConnect);
    centralManager.onInputPacket = [this](const DecodedPacket& packet) { inputManager.handle(packet); };
    centralManager.onConnectionLost = [this] { inputManager.releaseAll(); };
    autoConnectChange_ = preferences.autoConnect.onDidChange(
        [this](bool enabled) { centralManager.setAutoConnectEnabled(enabled); });
    inputManager.onTransportKey = [&bridge = ports.bridge](std::uint16_t keycode, ModifierFlags modifiers) {
        bridge.handleTransportKey(keycode, modifiers);
    };
}

AppCoordinator::~AppCoordinator() = default;

}  // namespace orbinex
