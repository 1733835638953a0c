#include "ui/tray_host.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <utility>

#include "ui/x11_atoms.h"

namespace orbinex {

namespace {

constexpr const char* notifierWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* notifierPath = "/StatusNotifierWatcher";
/// Some trays tell of themselves before they have a place on the screen, and lose an icon that comes then.
constexpr std::chrono::milliseconds settleTime{500};

template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> adopt(Reply* reply) {
    return {reply, &std::free};
}

bool takesWindows(xcb_connection_t* connection, xcb_atom_t tray) {
    const auto cookie = xcb_get_selection_owner(connection, tray);
    const auto reply = adopt(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

/// What is told of on the root window by messages to all reaches this connection, besides what does already.
void hearTheRoot(xcb_connection_t* connection) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto cookie = xcb_get_window_attributes(connection, root);
    const auto reply = adopt(xcb_get_window_attributes_reply(connection, cookie, nullptr));
    const std::uint32_t mask = (reply ? reply->your_event_mask : 0U) | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection);
}

}  // namespace

TrayHost::TrayHost(std::function<void()> appeared)
    : appeared_(std::move(appeared)), bus_(QDBusConnection::sessionBus()) {
    xcb_connection_t* const connection = toolkitX11Connection();
    if (!connection) {
        appear();
        return;
    }
    managerAtom_ = atomNamed(connection, "MANAGER");
    // The one of the first screen; no desktop has had another for long.
    trayAtom_ = atomNamed(connection, "_NET_SYSTEM_TRAY_S0");
    if (takesWindows(connection, trayAtom_)) {
        appear();
        return;
    }
    settling_.setSingleShot(true);
    connect(&settling_, &QTimer::timeout, this, [this] { appear(); });
    hearTheRoot(connection);
    qGuiApp->installNativeEventFilter(this);
    if (!bus_.isConnected()) return;
    watcher_.setConnection(bus_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    watcher_.addWatchedService(notifierWatcher);
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &TrayHost::askTheBus);
    // The watcher may be there before the tray that it watches for.
    bus_.connect(notifierWatcher, notifierPath, notifierWatcher, "StatusNotifierHostRegistered", this,
                 SLOT(askTheBus()));
    askTheBus();
}

TrayHost::~TrayHost() {
    qGuiApp->removeNativeEventFilter(this);
}

void TrayHost::askTheBus() {
    auto question = QDBusMessage::createMethodCall(notifierWatcher, notifierPath,
                                                   "org.freedesktop.DBus.Properties", "Get");
    question.setArguments({notifierWatcher, "IsStatusNotifierHostRegistered"});
    question.setAutoStartService(false);
    auto* const answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        call->deleteLater();
        if (reply.isValid() && reply.value().variant().toBool()) appear();
    });
}

bool TrayHost::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    constexpr unsigned sentMask = 0x7f;
    if (type != "xcb_generic_event_t" || (event->response_type & sentMask) != XCB_CLIENT_MESSAGE)
        return false;
    // A tray tells of itself on the root window by MANAGER.
    const auto* const client = reinterpret_cast<const xcb_client_message_event_t*>(event);
    if (client->type == managerAtom_ && client->data.data32[1] == trayAtom_) settling_.start(settleTime);
    return false;
}

void TrayHost::appear() {
    if (std::exchange(isPresent_, true)) return;
    qGuiApp->removeNativeEventFilter(this);
    appeared_();
}

}  // namespace orbinex
