#include "ui/desktop_notifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QVariantMap>
#include <utility>

#include "ui/interface_texts.h"

namespace orbinex {

namespace {

// The Desktop Notifications Specification.
constexpr const char* notificationService = "org.freedesktop.Notifications";
constexpr const char* notificationPath = "/org/freedesktop/Notifications";
/// What a click on the notification itself does.
constexpr const char* defaultAction = "default";

QString nameOfAction(std::size_t index) {
    return index == 0 ? QString(defaultAction) : QString::number(index);
}

/// A service that has not answered by then will not.
constexpr int patience = 5'000;
constexpr int serviceDecides = -1;

}  // namespace

DesktopNotifications::DesktopNotifications(std::vector<Action> actions)
    : actions_(std::move(actions)), bus_(QDBusConnection::sessionBus()) {
    // From whoever is the service: to follow who that is would wait for the bus.
    bus_.connect({}, notificationPath, notificationService, "ActivationToken", this,
                 SLOT(keepToken(uint, QString)));
    bus_.connect({}, notificationPath, notificationService, "ActionInvoked", this, SLOT(act(uint, QString)));
}

void DesktopNotifications::tell(const QString& title, const QString& text, std::function<void(bool)> answer) {
    if (!bus_.isConnected()) return answer(false);
    QStringList actions;
    for (std::size_t i = 0; i < actions_.size(); ++i) actions << nameOfAction(i) << actions_[i].label;
    const QString program = QGuiApplication::desktopFileName();
    auto call =
        QDBusMessage::createMethodCall(notificationService, notificationPath, notificationService, "Notify");
    // The text is taken for markup, and names come from the air.
    call.setArguments({InterfaceText::productName, id_, program, title, text.toHtmlEscaped(), actions,
                       QVariantMap{{"desktop-entry", program}}, serviceDecides});
    auto* const waiting = new QDBusPendingCallWatcher(bus_.asyncCall(call, patience), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this,
            [this, answer = std::move(answer)](QDBusPendingCallWatcher* finished) {
                const QDBusPendingReply<uint> reply = *finished;
                finished->deleteLater();
                if (!reply.isError()) id_ = reply.value();
                answer(!reply.isError());
            });
}

void DesktopNotifications::keepToken(uint id, const QString& token) {
    if (id == id_) token_ = token;
}

void DesktopNotifications::act(uint id, const QString& action) {
    if (id == 0 || id != id_) return;
    for (std::size_t i = 0; i < actions_.size(); ++i) {
        if (action == nameOfAction(i)) return actions_[i].act(std::exchange(token_, {}).toStdString());
    }
}

}  // namespace orbinex
