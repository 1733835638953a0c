#pragma once

#include <QObject>
#include <QString>
#include <mutex>

namespace orbinex::test {

/// As much of a desktop's tray as an icon asks for.
class NotifierWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

  public:
    [[nodiscard]] bool hasHost() const { return true; }
    /// The icon's name on the bus; empty until one is registered.
    [[nodiscard]] QString item() {
        const std::lock_guard lock(mutex_);
        return item_;
    }

    void forget() {
        const std::lock_guard lock(mutex_);
        item_.clear();
    }

  public Q_SLOTS:
    // NOLINTNEXTLINE(readability-identifier-naming): the name on the bus
    void RegisterStatusNotifierItem(const QString& service) {
        const std::lock_guard lock(mutex_);
        item_ = service;
    }

  private:
    std::mutex mutex_;
    QString item_;
};

}  // namespace orbinex::test
