#include "ui/interface.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPixmapCache>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QScreen>
#include <utility>

#include "ui/memory_trim.h"
#include "ui/panel_placement.h"
#include "ui/shown_text.h"
#include "ui/x11_window_hints.h"

namespace orbinex {

namespace {

/// About what window managers put on top of a window.
constexpr int titleBarHeight = 40;

}  // namespace

Interface::Interface(Ports ports)
    : ports_(std::move(ports)), notifications_([this](const std::string& startupToken) {
          ports_.presence.setStartupToken(startupToken);
          openMainWindow();
      }) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    trayIcon_ = std::make_unique<TrayIcon>(
        ports_.app.preferences, ports_.app.centralManager,
        TrayIcon::Actions{[this] { togglePanel(); }, [this] { openMainWindow(); }});
    ports_.app.preferences.attach(ports_.presence, ports_.queue);
    releaseTimer_ = ports_.queue.after(launchTime, [this] { release(); });
    // What needs an answer comes to the person.
    observers_.push_back(ports_.pairing.question.onDidChange(
        [this](const auto& question) { question ? openForQuestion() : closeAfterQuestion(); }));
    observers_.push_back(ports_.relocation.alert.onDidChange([this](const auto& alert) {
        if (alert) openMainWindow();
    }));
    observers_.push_back(ports_.app.centralManager.alert.onDidChange(
        [this](const std::optional<BLEAlert>& alert) { tell(alert); }));
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
                                    {ports_.app.centralManager, ports_.app.trustStore, ports_.relocation,
                                     ports_.pairing, ports_.urls},
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
    if (!scene_ || !scene_->isMainWindowVisible()) isForQuestionOnly_ = false;
    releaseTimer_ = hasVisibleWindows() ? Timer() : ports_.queue.after(unusedLifetime, [this] { release(); });
}

void Interface::release() {
    scene_.reset();
    QPixmapCache::clear();
    trimMemory();
}

void Interface::tell(const std::optional<BLEAlert>& alert) {
    const auto isSeen = [this] { return scene_ && scene_->isMainWindowSeen(); };
    if (!alert || isSeen()) return;
    const auto title = QString::fromStdString(shownText(alert->title));
    const auto text = QString::fromStdString(shownText(alert->message));
    notifications_.tell(title, text, [this, isSeen, title, text] {
        if (!isSeen() && !trayIcon_->showMessage(title, text)) openMainWindow();
    });
}

void Interface::openForQuestion() {
    const bool wasOpen = scene_ && scene_->isMainWindowVisible();
    const bool wasForQuestion = isForQuestionOnly_;
    openMainWindow();
    isForQuestionOnly_ = !wasOpen || wasForQuestion;
}

void Interface::closeAfterQuestion() {
    if (std::exchange(isForQuestionOnly_, false) && scene_ && scene_->isMainWindowVisible())
        scene_->mainWindow()->close();
}

void Interface::openMainWindow() {
    isForQuestionOnly_ = false;
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
