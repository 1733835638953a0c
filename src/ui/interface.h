#pragma once

#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "app/app_coordinator.h"
#include "app/app_relocation_manager.h"
#include "app/reporting_url_opener.h"
#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/user_defaults.h"
#include "ui/desktop_notifications.h"
#include "ui/desktop_presence.h"
#include "ui/exposure_watch.h"
#include "ui/pairing_question.h"
#include "ui/scene.h"
#include "ui/tray_icon.h"

namespace orbinex {

/// The program's face: the tray icon, its panel and the main window. The windows are loaded when one is first
/// asked for, and given back a while after the last was closed. While no tray icon is seen the main window
/// stays in the task bar instead, minimised when it is closed.
class Interface final {
  public:
    /// How long windows that are not seen stay in memory, for who opens them again at once.
    static constexpr std::chrono::seconds unusedLifetime{20};
    /// By then the launch is over, and what only it needed can go from memory.
    static constexpr std::chrono::seconds launchTime{2};
    /// A click that takes the focus from the panel, and so closes it, is not to open it again.
    static constexpr std::chrono::milliseconds clickTime{300};

    struct Ports {
        MainQueue& queue;
        UserDefaults& defaults;
        AppCoordinator& app;
        AppRelocationManager& relocation;
        PairingQuestion& pairing;
        /// What it could not open is told.
        ReportingUrlOpener& urls;
        DesktopPresence& presence;
        std::function<void()> quit;
    };
    /// Needs a QApplication; all ports must outlive the interface.
    explicit Interface(Ports ports);
    Interface(const Interface&) = delete;
    Interface& operator=(const Interface&) = delete;
    ~Interface();

    /// To be called before the QApplication is made: how windows are to be drawn.
    static void prepareApplication();

    /// Brings the main window to the front, or opens it, and activates the program.
    void openMainWindow();
    /// Opens the panel at the tray icon, or closes it.
    void togglePanel();
    [[nodiscard]] bool hasVisibleWindows() const { return scene_ && scene_->hasVisibleWindow(); }
    /// The QML side, null while it is not loaded.
    [[nodiscard]] Scene* scene() { return scene_.get(); }
    [[nodiscard]] TrayIcon& trayIcon() { return *trayIcon_; }

  private:
    void openFromDesktop(const std::string& startupToken);
    [[nodiscard]] Scene& loadedScene();
    void follow(QQuickWindow& window);
    void keepEntry();
    void tellOfEntry();
    void openForQuestion();
    void closeAfterQuestion();
    void followPanel(QQuickWindow& panel);
    void openPanel();
    void placePanel(QQuickWindow& panel) const;
    void visibilityChanged();
    void release();
    [[nodiscard]] bool isMainWindowSeen() const { return scene_ && scene_->isMainWindowSeen(); }
    void tell(DesktopNotifications& how, const std::string& title, const std::string& text);
    void watchBluetooth(BluetoothState state);
    void tellThatBluetoothIsOff();

    Ports ports_;
    std::unique_ptr<Scene> scene_;
    std::unique_ptr<TrayIcon> trayIcon_;
    DesktopNotifications alertNotifications_;
    DesktopNotifications entryNotifications_;
    DesktopNotifications powerNotifications_;
    ExposureWatch exposure_;
    /// Connections to windows end with it.
    QObject context_;
    QRect panelAnchor_;
    /// What the main window is open for.
    enum class Purpose {
        person,    ///< they have opened it
        question,  ///< it waits for an answer, and closes then
        entry,     ///< it stands in the task bar, minimised, as there is no tray icon
    };
    Purpose purpose_ = Purpose::person;
    std::chrono::nanoseconds panelLeft_{-clickTime};
    Timer releaseTimer_;
    bool isPowerKnown_ = false;
    Timer powerTimer_;
    std::vector<Subscription> observers_;
    Lifetime lifetime_;
};

}  // namespace orbinex
