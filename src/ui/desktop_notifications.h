#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <string>
#include <vector>

namespace orbinex {

/// Tells of one subject while no window is seen, through the desktop's notification service. One at a time:
/// what is told takes the place of what was told before.
class DesktopNotifications final : public QObject {
    Q_OBJECT

  public:
    /// What can be done about it.
    struct Action {
        QString label;
        /// Gets the token by which the desktop lets a window come to the front; empty where it gives none.
        std::function<void(const std::string& startupToken)> act;
    };
    /// The first is done by a click on the notification itself, the others by buttons.
    explicit DesktopNotifications(std::vector<Action> actions);

    /// Both are plain text. Does not wait; `answer` tells whether a service has taken it: from the event
    /// loop, or at once where there is no session bus.
    void tell(const QString& title, const QString& text, std::function<void(bool isTold)> answer);

  private:
    Q_SLOT void keepToken(uint id, const QString& token);
    Q_SLOT void act(uint id, const QString& action);

    std::vector<Action> actions_;
    QDBusConnection bus_;
    /// The one that was told last; 0 for none.
    uint id_ = 0;
    QString token_;
};

}  // namespace orbinex
