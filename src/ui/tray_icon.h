#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "app/app_preferences.h"
#include "link/central_ble_manager.h"
#include "ui/tray_host.h"

class QSystemTrayIcon;

namespace orbinex {

/// The tray icon: there while the preferences want it and there is a place for it, its symbol and name
/// following the link's phase.
class TrayIcon final : public QObject {
  public:
    struct Actions {
        std::function<void()> clicked;
        /// A message that the icon has shown was clicked.
        std::function<void()> messageClicked;
    };
    /// Both managers must outlive the icon.
    TrayIcon(AppPreferences& preferences, CentralBLEManager& central, Actions actions);
    ~TrayIcon() override;

    [[nodiscard]] bool isShown() const { return icon_ != nullptr; }
    /// Where it is on the screen; empty where the desktop does not tell.
    [[nodiscard]] QRect geometry() const;
    /// Tells something in a balloon at the icon; false where only a notification service could.
    bool showMessage(const QString& title, const QString& text);

  private:
    void follow(bool isWanted);
    void draw(LinkPhase phase);

    AppPreferences& preferences_;
    CentralBLEManager& central_;
    Actions actions_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::unique_ptr<TrayHost> host_;
    std::vector<Subscription> observers_;
};

}  // namespace orbinex
