#include "ui/interface.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPixmapCache>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QScreen>
#include <utility>

#include "app/system_settings_urls.h"
#include "ui/interface_texts.h"
#include "ui/memory_trim.h"
#include "ui/panel_placement.h"
#include "ui/shown_text.h"
#include "ui/x11_window_hints.h"

namespace orbinex {

namespace {

/// About what window managers put on top of a window.
constexpr int titleBarHeight = 40;
/// Stored once the person has been told that the program is in the task bar.
constexpr const char* toldOfEntryKey = "toldOfTaskBarEntry";

}  // namespace

Interface::Interface(Ports ports)
    : ports_(std::move(ports)),
      alertNotifications_(
          {{InterfaceText::openOrbinex, [this](const auto& token) { openFromDesktop(token); }}}),
      entryNotifications_(
          {{InterfaceText::openOrbinex, [this](const auto& token) { openFromDesktop(token); }},
           {InterfaceText::quitOrbinex, [this](const auto&) { ports_.quit(); }}}),
      powerNotifications_({{InterfaceText::openBluetoothSettings,
                            [this](const auto&) { ports_.urls.open(bluetoothSettingsUrl); }}}) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    trayIcon_ = std::make_unique<TrayIcon>(
        ports_.queue, ports_.app.preferences, ports_.app.centralManager,
        TrayIcon::Actions{[this] { togglePanel(); }, [this] { openMainWindow(); }});
    ports_.app.preferences.attach(ports_.presence, ports_.queue);
    releaseTimer_ = ports_.queue.after(launchTime, [this] { release(); });
    // What needs an answer comes to the person.
    observers_.push_back(ports_.pairing.question.onDidChange(
        [this](const auto& question) { question ? openForQuestion() : closeAfterQuestion(); }));
    observers_.push_back(ports_.relocation.alert.onDidChange([this](const auto& alert) {
        if (alert) openMainWindow();
    }));
    observers_.push_back(
        ports_.app.centralManager.alert.onDidChange([this](const std::optional<BLEAlert>& alert) {
            if (alert) tell(alertNotifications_, alert->title, alert->message);
        }));
    const auto keep = [this](bool) { keepEntry(); };
    observers_.push_back(ports_.app.preferences.isTrayPresent.onDidChange(keep));
    observers_.push_back(ports_.app.preferences.showMenuBarIcon.onDidChange(keep));
    // Whoever starts the program has its window opened first.
    ports_.queue.post(lifetime_.guard([this] { keepEntry(); }));
    observers_.push_back(ports_.app.centralManager.bluetoothState.onDidChange(
        [this](BluetoothState state) { watchBluetooth(state); }));
    watchBluetooth(*ports_.app.centralManager.bluetoothState);
}

Interface::~Interface() {
    ports_.app.preferences.detach();
}

void Interface::prepareApplication() {
    // Nothing here needs a graphics card, and the drivers' memory would be several times our own.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

Scene& Interface::loadedScene() {
    if (!scene_) {
        scene_ = std::make_unique<Scene>(
            InterfaceModel::Sources{ports_.queue,
                                    ports_.app.trustStore,
                                    ports_.relocation,
                                    ports_.pairing,
                                    {ports_.app.centralManager, ports_.app.accessibilityManager,
                                     ports_.app.loginItemManager, ports_.app.preferences},
                                    ports_.urls},
            InterfaceModel::Actions{[this] { openMainWindow(); }, ports_.quit},
            [this](QQuickWindow& window) { follow(window); });
    }
    return *scene_;
}

void Interface::follow(QQuickWindow& window) {
    QObject::connect(&window, &QWindow::visibleChanged, &context_, [this] { visibilityChanged(); });
    window.installEventFilter(&exposure_);
    if (window.objectName() == "panel") return followPanel(window);
    QObject::connect(&window, &QWindow::visibilityChanged, &context_, [this](QWindow::Visibility visibility) {
        if (purpose_ == Purpose::entry && visibility != QWindow::Minimized) purpose_ = Purpose::person;
    });
    const QSize room = window.screen()->availableSize() - QSize(0, titleBarHeight);
    window.resize(window.size().boundedTo(room));
}

void Interface::followPanel(QQuickWindow& panel) {
    QObject::connect(&panel, &QWindow::activeChanged, &context_, [this, &panel] {
        if (panel.isActive() || !panel.isVisible()) return;
        panelLeft_ = ports_.queue.uptime();
        panel.hide();
    });
    // Rows come and go; the panel stays at the icon.
    QObject::connect(&panel, &QWindow::heightChanged, &context_, [this, &panel] {
        if (panel.isVisible()) placePanel(panel);
    });
}

void Interface::visibilityChanged() {
    if (!scene_ || !scene_->isMainWindowVisible()) {
        purpose_ = Purpose::person;
        // Not while it closes.
        ports_.queue.post(lifetime_.guard([this] { keepEntry(); }));
    }
    releaseTimer_ = hasVisibleWindows() ? Timer() : ports_.queue.after(unusedLifetime, [this] { release(); });
}

void Interface::release() {
    scene_.reset();
    QPixmapCache::clear();
    trimMemory();
}

void Interface::tell(DesktopNotifications& how, const std::string& title, const std::string& text) {
    if (isMainWindowSeen()) return;
    const auto shownTitle = QString::fromStdString(shownText(title));
    const auto shown = QString::fromStdString(shownText(text));
    how.tell(shownTitle, shown, [this, shownTitle, shown](bool isTold) {
        if (!isTold && !isMainWindowSeen() && !trayIcon_->showMessage(shownTitle, shown)) openMainWindow();
    });
}

/// The first that is known of it counts: whoever turns it off later knows that.
void Interface::watchBluetooth(BluetoothState state) {
    if (state == BluetoothState::unknown || state == BluetoothState::resetting || isPowerKnown_) return;
    isPowerKnown_ = true;
    // A window that opens at the start tells it by itself.
    if (state == BluetoothState::poweredOff)
        powerTimer_ = ports_.queue.after(launchTime, [this] { tellThatBluetoothIsOff(); });
}

void Interface::tellThatBluetoothIsOff() {
    const CentralBLEManager& link = ports_.app.centralManager;
    if (*link.bluetoothState != BluetoothState::poweredOff || (scene_ && scene_->isPanelVisible())) return;
    tell(powerNotifications_, InterfaceText::bluetoothUnavailableTitle, *link.statusMessage);
}

/// Something always leads to the program: while that is no tray icon, the main window in the task bar.
void Interface::keepEntry() {
    const bool isVisible = scene_ && scene_->isMainWindowVisible();
    if (ports_.app.preferences.isTrayIconSeen()) {
        if (isVisible && purpose_ == Purpose::entry) scene_->mainWindow()->close();
        return;
    }
    if (isVisible) return;
    QQuickWindow* const window = loadedScene().mainWindow();
    if (!window) return;
    ports_.presence.prepare(*window);
    window->showMinimized();
    purpose_ = Purpose::entry;
    tellOfEntry();
}

void Interface::tellOfEntry() {
    if (ports_.defaults.boolean(toldOfEntryKey) == true) return;
    entryNotifications_.tell(InterfaceText::keptInTaskBarTitle, InterfaceText::keptInTaskBar,
                             [this](bool isTold) {
                                 if (isTold) ports_.defaults.setBoolean(toldOfEntryKey, true);
                             });
}

void Interface::openForQuestion() {
    const bool wasOpen = scene_ && scene_->isMainWindowVisible() && purpose_ == Purpose::person;
    openMainWindow();
    if (!wasOpen) purpose_ = Purpose::question;
}

void Interface::closeAfterQuestion() {
    if (purpose_ == Purpose::question && scene_ && scene_->isMainWindowVisible())
        scene_->mainWindow()->close();
}

void Interface::openFromDesktop(const std::string& startupToken) {
    ports_.presence.setStartupToken(startupToken);
    openMainWindow();
}

void Interface::openMainWindow() {
    purpose_ = Purpose::person;
    QQuickWindow* const window = loadedScene().mainWindow();
    if (!window) return;
    if (!window->isVisible()) {
        ports_.presence.prepare(*window);
        window->show();
    } else if (window->visibility() == QWindow::Minimized) {
        // It stays as large as it was.
        window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    }
    if (QQuickWindow* const panel = scene_->isPanelVisible() ? scene_->panel() : nullptr) panel->hide();
    ports_.presence.bringVisibleWindowToFront();
}

void Interface::togglePanel() {
    if (scene_ && scene_->isPanelVisible()) return scene_->panel()->hide();
    if (ports_.queue.uptime() - panelLeft_ >= clickTime) openPanel();
}

void Interface::openPanel() {
    QQuickWindow* const panel = loadedScene().panel();
    if (!panel) return;
    // Where the desktop does not tell where the icon is, the pointer has just clicked it.
    const QRect icon = trayIcon_->geometry();
    panelAnchor_ = icon.isEmpty() ? QRect(QCursor::pos(), QSize(1, 1)) : icon;
    placePanel(*panel);
    panel->show();
    panel->raise();
    panel->requestActivate();
}

void Interface::placePanel(QQuickWindow& panel) const {
    const QScreen* screen = QGuiApplication::screenAt(panelAnchor_.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QRect available = screen->availableGeometry();
    panel.setProperty("availableHeight", available.height());
    roundCorners(panel, panel.property("cornerRadius").toInt());
    panel.setPosition(panelPosition(panelAnchor_, available, panel.size()));
}

}  // namespace orbinex
