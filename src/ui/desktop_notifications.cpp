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
/// A service that has not answered by then will not.
constexpr int patience = 5'000;
constexpr int serviceDecides = -1;

}  // namespace

DesktopNotifications::DesktopNotifications(std::function<void(const std::string&)> clicked)
    : clicked_(std::move(clicked)), bus_(QDBusConnection::sessionBus()) {
    // From whoever is the service: to follow who that is would wait for the bus.
    bus_.connect({}, notificationPath, notificationService, "ActivationToken", this,
                 SLOT(keepToken(uint, QString)));
    bus_.connect({}, notificationPath, notificationService, "ActionInvoked", this, SLOT(act(uint, QString)));
}

void DesktopNotifications::tell(const QString& title, const QString& text, std::function<void()> otherwise) {
    if (!bus_.isConnected()) return otherwise();
    const QString program = QGuiApplication::desktopFileName();
    auto call =
        QDBusMessage::createMethodCall(notificationService, notificationPath, notificationService, "Notify");
    // The text is taken for markup, and names come from the air.
    call.setArguments({InterfaceText::productName, id_, program, title, text.toHtmlEscaped(),
                       QStringList{defaultAction, InterfaceText::openOrbinex},
                       QVariantMap{{"desktop-entry", program}}, serviceDecides});
    auto* const answer = new QDBusPendingCallWatcher(bus_.asyncCall(call, patience), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this, otherwise = std::move(otherwise)](QDBusPendingCallWatcher* finished) {
                const QDBusPendingReply<uint> reply = *finished;
                finished->deleteLater();
                if (reply.isError()) return otherwise();
                id_ = reply.value();
            });
}

void DesktopNotifications::keepToken(uint id, const QString& token) {
    if (id == id_) token_ = token;
}

void DesktopNotifications::act(uint id, const QString& action) {
    if (id != 0 && id == id_ && action == defaultAction) clicked_(std::exchange(token_, {}).toStdString());
}

}  // namespace orbinex
