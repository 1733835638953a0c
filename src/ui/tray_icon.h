#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "app/app_preferences.h"
#include "base/main_queue.h"
#include "link/central_ble_manager.h"
#include "ui/tray_host.h"

class QSystemTrayIcon;

namespace orbinex {

/// The tray icon: there while the preferences want it and there is a place for it, its symbol and name
/// following the link's phase. Tells the preferences whether there is such a place.
class TrayIcon final : public QObject {
  public:
    /// How long a desktop may be without a tray before it counts as one that has none: at login the program
    /// may come before the tray, and a tray that has crashed is started anew.
    static constexpr std::chrono::seconds trayPatience{5};

    struct Actions {
        std::function<void()> clicked;
        /// A message that the icon has shown was clicked.
        std::function<void()> messageClicked;
    };
    /// The queue and the managers must outlive the icon.
    TrayIcon(MainQueue& queue, AppPreferences& preferences, CentralBLEManager& central, Actions actions);
    ~TrayIcon() override;

    [[nodiscard]] bool isShown() const { return icon_ != nullptr; }
    /// Where it is on the screen; empty where the desktop does not tell.
    [[nodiscard]] QRect geometry() const;
    /// Tells something in a balloon at the icon; false where only a notification service could.
    bool showMessage(const QString& title, const QString& text);

  private:
    void follow();
    void followHost(bool isPresent);
    void draw(LinkPhase phase);

    MainQueue& queue_;
    AppPreferences& preferences_;
    CentralBLEManager& central_;
    Actions actions_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    TrayHost host_;
    Timer absence_;
    std::vector<Subscription> observers_;
};

}  // namespace orbinex
