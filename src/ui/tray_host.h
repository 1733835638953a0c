#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>

namespace orbinex {

/// Whether there is a place for tray icons: one that speaks to icons over the session bus, or one that takes
/// their windows. Some desktops have none; others start it after this program, and may start it anew. What
/// the toolkit finds out about the bus when the first icon is made holds for ever: so no icon is made before.
class TrayHost final : public QObject, QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    /// Calls back whenever there comes to be one or none, from the event loop. On a platform that has no way
    /// to tell there is one.
    explicit TrayHost(std::function<void(bool isPresent)> changed);
    ~TrayHost() override;

    [[nodiscard]] bool isPresent() const { return isPresent_; }

  private:
    Q_SLOT void askTheBus();
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void findWindowTray();
    void update();

    std::function<void(bool)> changed_;
    bool isPresent_ = true;
    bool isOnTheBus_ = false;
    /// The tray that takes windows; 0 without one.
    std::uint32_t windowTray_ = 0;
    // What it tells of itself by.
    std::uint32_t managerAtom_ = 0;
    std::uint32_t trayAtom_ = 0;
    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    QTimer settling_;
};

}  // namespace orbinex
