#include "pictures/faced_program.h"

namespace orbinex {

QApplication& application() {
    static int count = 1;
    static char name[] = "orbinex";
    static char* arguments[] = {name, nullptr};
    static QApplication* const made = [] {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            // Nor is anything told on the desktop of whoever runs this.
            qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
        }
        Interface::prepareApplication();
        return new QApplication(count, arguments);
    }();
    return *made;
}

FacedProgram::FacedProgram(Stored stored, bool isInputAllowed, BluetoothState bluetooth)
    : radio(queue, bluetooth), preferences([&]() -> UserDefaults& {
          application();
          defaults.values = std::move(stored);
          return defaults;
      }()) {
    shell.permission.setGranted(isInputAllowed);
    app.accessibilityManager.refresh();
    queue.runDue();
}

SimulatedPhone& FacedProgram::addPhone(const std::string& name, int rssi) {
    SimulatedPhone& phone = radio.addPhone(UUID::random(), {2, UUID::random(), name});
    phone.rssi = rssi;
    return phone;
}

TrustedDevice FacedProgram::trust(const std::string& name, std::optional<Seconds> lastConnectedAgo) {
    TrustedDevice device{.id = UUID::random(),
                         .name = name,
                         .token = {},
                         .peripheralIdentifier = UUID::random(),
                         .dateAdded = queue.now(),
                         .lastConnected = std::nullopt};
    device.token = device.id.text().substr(0, 6);
    if (lastConnectedAgo)
        device.lastConnected =
            queue.now() - std::chrono::duration_cast<ReferenceClock::duration>(*lastConnectedAgo);
    app.trustStore.trust(device);
    return device;
}

void FacedProgram::bringTo(LinkPhase phase, SimulatedPhone& phone) {
    using namespace std::chrono_literals;
    advance(2s);
    phone.connectStep.isAnswered = phase != LinkPhase::connecting;
    phone.infoStep.isAnswered = phase == LinkPhase::connected;
    app.centralManager.connectNearbyDevice(phone.identifier());
    advance(2s);
    if (*app.centralManager.phase != phase) qWarning("the link does not come to the wanted phase");
}

QQuickWindow& FacedProgram::window() {
    face.openMainWindow();
    return *face.scene()->mainWindow();
}

QQuickWindow& FacedProgram::panel() {
    if (!face.scene() || !face.scene()->isPanelVisible()) face.togglePanel();
    return *face.scene()->panel();
}

}  // namespace orbinex
