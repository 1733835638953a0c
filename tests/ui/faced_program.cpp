#include "ui/faced_program.h"

#include <gtest/gtest.h>

namespace orbinex::test {

namespace {

/// What went wrong in QML is said as a warning only; here it is a failure.
void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    if (message.contains("propagateSizeHints") || message.contains("XDG_RUNTIME_DIR") ||
        message.contains("systemTrayWindowChanged") || message.contains("does not support raise"))
        return;
    ADD_FAILURE() << message.toStdString();
}

}  // namespace

QApplication& application() {
    static int count = 1;
    static char name[] = "orbinex";
    static char* arguments[] = {name, nullptr};
    static QApplication* const made = [] {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        Interface::prepareApplication();
        qInstallMessageHandler(failOnWarnings);
        return new QApplication(count, arguments);
    }();
    return *made;
}

QQuickItem* findItem(QQuickItem* root, const QString& path) {
    const QString first = path.section('/', 0, 0);
    const QString rest = path.section('/', 1);
    for (QQuickItem* child : root->childItems()) {
        if (!child->isVisible()) continue;
        if (child->objectName() == first) {
            if (rest.isEmpty()) return child;
            if (QQuickItem* const found = findItem(child, rest)) return found;
        }
        if (QQuickItem* const found = findItem(child, path)) return found;
    }
    return nullptr;
}

std::vector<QQuickItem*> visibleItems(QQuickItem* root) {
    std::vector<QQuickItem*> all;
    for (QQuickItem* child : root->childItems()) {
        if (!child->isVisible()) continue;
        all.push_back(child);
        const auto below = visibleItems(child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

FacedProgram::FacedProgram(Stored stored, bool isInputAllowed)
    : preferences([&]() -> UserDefaults& {
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
    ASSERT_EQ(*app.centralManager.phase, phase);
}

QQuickWindow& FacedProgram::window() {
    face.openMainWindow();
    return *face.scene()->mainWindow();
}

QQuickWindow& FacedProgram::panel() {
    if (!face.scene() || !face.scene()->isPanelVisible()) face.togglePanel();
    return *face.scene()->panel();
}

void Hand::settle() {
    // A grab polishes every item, which layouts wait for; what one of them does may set off another.
    for (int turn = 0; turn < 6; ++turn) {
        QCoreApplication::processEvents();
        static_cast<void>(window_.grabWindow());
    }
}

bool Hand::sees(const QString& path) {
    return findItem(window_.contentItem(), path) != nullptr;
}

QVariant Hand::property(const QString& path, const char* name) {
    QQuickItem* const item = findItem(window_.contentItem(), path);
    return item ? item->property(name) : QVariant();
}

QString Hand::text(const QString& path) {
    return property(path, "text").toString();
}

QPoint Hand::place(const QString& path) {
    QQuickItem* const item = findItem(window_.contentItem(), path);
    if (!item) return {};
    item->forceActiveFocus(Qt::OtherFocusReason);
    settle();
    return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
}

bool Hand::click(const QString& path) {
    settle();
    if (!sees(path)) return false;
    QTest::mouseClick(&window_, Qt::LeftButton, {}, place(path));
    settle();
    return true;
}

}  // namespace orbinex::test
