#include "ui/desktop_presence.h"

#include <QGuiApplication>

#include "ui/x11_window_hints.h"

namespace orbinex {

namespace {

/// Null when there is none.
QWindow* visibleMainWindow() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible() && window->objectName().startsWith("main")) return window;
    }
    return nullptr;
}

}  // namespace

DesktopPresence::DesktopPresence() {
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &context_,
                     [this](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive) activation_.didBecomeActive.emit();
                     });
}

void DesktopPresence::prepare(QWindow& window) const {
    setSkipsTaskBar(window, policy_ == ActivationPolicy::accessory);
}

std::string DesktopPresence::launchToken() const {
    QWindow* const window = visibleMainWindow();
    return window ? orbinex::launchToken(*window) : std::string();
}

void DesktopPresence::setActivationPolicy(ActivationPolicy policy) {
    policy_ = policy;
    if (QWindow* const window = visibleMainWindow()) prepare(*window);
}

void DesktopPresence::activate() {
    if (QWindow* const window = visibleMainWindow()) window->requestActivate();
}

void DesktopPresence::bringVisibleWindowToFront() {
    QWindow* const window = visibleMainWindow();
    if (!window) return;
    const std::string token = std::exchange(startupToken_, {});
    window->raise();
    if (!activateForLaunch(*window, token)) window->requestActivate();
    tellLaunched(*window, token);
}

}  // namespace orbinex
