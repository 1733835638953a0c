#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <mutex>
#include <vector>

namespace orbinex::test {

inline constexpr const char* notificationName = "org.freedesktop.Notifications";
inline constexpr const char* notificationPath = "/org/freedesktop/Notifications";

/// As much of a desktop's notification service as is asked for.
class NotificationService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

  public:
    struct Told {
        uint replaces = 0;
        QString title;
        QString text;
        QStringList actions;
    };
    /// Of every notification.
    static constexpr uint id = 7;

    [[nodiscard]] std::vector<Told> told() {
        const std::lock_guard lock(mutex_);
        return told_;
    }

  public Q_SLOTS:
    // NOLINTNEXTLINE(readability-identifier-naming): the name on the bus
    uint Notify(const QString&, uint replaces, const QString&, const QString& title, const QString& text,
                const QStringList& actions, const QVariantMap&, int) {
        const std::lock_guard lock(mutex_);
        told_.push_back({replaces, title, text, actions});
        return id;
    }

  private:
    std::mutex mutex_;
    std::vector<Told> told_;
};

}  // namespace orbinex::test
