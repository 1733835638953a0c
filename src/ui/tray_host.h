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
/// their windows. A desktop may start it after this program, and what the toolkit finds out about the bus
/// when the first icon is made holds for ever: so no icon is made before.
class TrayHost final : public QObject, QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    /// Calls back once there is one, from the event loop; at once, within the constructor, where windows are
    /// taken already or the platform has no way to tell. Not again.
    explicit TrayHost(std::function<void()> appeared);
    ~TrayHost() override;

    [[nodiscard]] bool isPresent() const { return isPresent_; }

  private:
    Q_SLOT void askTheBus();
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void appear();

    std::function<void()> appeared_;
    bool isPresent_ = false;
    // What a tray that takes windows tells of itself by.
    std::uint32_t managerAtom_ = 0;
    std::uint32_t trayAtom_ = 0;
    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    QTimer settling_;
};

}  // namespace orbinex
