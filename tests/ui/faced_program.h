#pragma once

#include <QApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest/QTest>
#include <memory>
#include <string>
#include <vector>

#include "app/app_coordinator.h"
#include "sim/idle_editor_bridge.h"
#include "sim/memory_defaults.h"
#include "sim/recording_event_poster.h"
#include "sim/scripted_layout.h"
#include "sim/simulated_bundle.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "sim/virtual_main_queue.h"
#include "ui/interface.h"

namespace orbinex::test {

/// The one application object of a test program, made at the first call. Windows are drawn where nobody sees
/// them unless the environment names another platform.
QApplication& application();

/// The visible item with that object name below another; "a/b" is b within a. Null when there is none.
[[nodiscard]] QQuickItem* findItem(QQuickItem* root, const QString& path);
[[nodiscard]] std::vector<QQuickItem*> visibleItems(QQuickItem* root);

/// The whole program with its face, in virtual time and with phones that are in the air.
struct FacedProgram {
    using Stored = decltype(MemoryDefaults::values);
    explicit FacedProgram(Stored stored = {}, bool isInputAllowed = true);

    /// A phone in the air; near enough for three bars unless told otherwise.
    SimulatedPhone& addPhone(const std::string& name, int rssi = -50);
    /// A trusted one that is not in the air.
    TrustedDevice trust(const std::string& name, std::optional<Seconds> lastConnectedAgo = std::nullopt);
    void advance(std::chrono::nanoseconds span) { queue.advance(span); }
    [[nodiscard]] LinkPhase phase() const { return *app.centralManager.phase; }
    /// Connects a phone in the air up to that phase.
    void bringTo(LinkPhase phase, SimulatedPhone& phone);

    QQuickWindow& window();
    QQuickWindow& panel();

    MemoryDefaults defaults;
    VirtualMainQueue queue;
    SimulatedRadio radio{queue};
    WakeNotifier wake;
    RecordingEventPoster poster;
    ScriptedLayoutSource layouts;
    IdleEditorBridge bridge;
    SimulatedShell shell;
    SimulatedBundle bundle;
    AppPreferences preferences;
    AppCoordinator app{
        preferences,
        {queue, defaults, radio, wake, poster, layouts, bridge, [] { return std::string(); }, shell.ports()}};
    AppRelocationManager relocation{queue, defaults, bundle};
    PairingQuestion pairing;
    DesktopPresence presence;
    int quits = 0;
    Interface face{{queue, app, relocation, pairing, shell.urls, presence, [this] { ++quits; }}};
};

/// What a person does in one window and reads there.
class Hand {
  public:
    explicit Hand(QQuickWindow& window) : window_(window) { settle(); }

    /// Lets layouts and bindings come to rest.
    void settle();
    [[nodiscard]] bool sees(const QString& path);
    /// The text of the item with that path; empty when it is not there.
    [[nodiscard]] QString text(const QString& path);
    [[nodiscard]] QVariant property(const QString& path, const char* name);
    /// Where the middle of the item is in the window, brought into view.
    [[nodiscard]] QPoint place(const QString& path);
    /// False when there is nothing of that name to click.
    bool click(const QString& path);
    void press(const QString& path) { QTest::mousePress(&window_, Qt::LeftButton, {}, place(path)); }
    void letGo(const QPoint& where) {
        QTest::mouseRelease(&window_, Qt::LeftButton, {}, where);
        settle();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&window_, key, modifiers);
        settle();
    }

  private:
    QQuickWindow& window_;
};

}  // namespace orbinex::test
