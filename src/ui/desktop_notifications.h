#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <string>

namespace orbinex {

/// Tells something while no window is seen, through the desktop's notification service. One at a time: what
/// is told takes the place of what was told before.
class DesktopNotifications final : public QObject {
    Q_OBJECT

  public:
    /// `clicked` gets the token by which the desktop lets a window come to the front; empty where it gives
    /// none.
    explicit DesktopNotifications(std::function<void(const std::string& startupToken)> clicked);

    /// Both are plain text. Does not wait; `otherwise` is called when no service has taken it: from the event
    /// loop, or at once where there is no session bus.
    void tell(const QString& title, const QString& text, std::function<void()> otherwise);

  private:
    Q_SLOT void keepToken(uint id, const QString& token);
    Q_SLOT void act(uint id, const QString& action);

    std::function<void(const std::string&)> clicked_;
    QDBusConnection bus_;
    /// The one that was told last; 0 for none.
    uint id_ = 0;
    QString token_;
};

}  // namespace orbinex
