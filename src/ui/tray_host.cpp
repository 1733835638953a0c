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

TrayHost::TrayHost(std::function<void(bool)> changed)
    : changed_(std::move(changed)), bus_(QDBusConnection::sessionBus()) {
    xcb_connection_t* const connection = toolkitX11Connection();
    if (!connection) return;
    isPresent_ = false;
    managerAtom_ = atomNamed(connection, "MANAGER");
    // The one of the first screen; no desktop has had another for long.
    trayAtom_ = atomNamed(connection, "_NET_SYSTEM_TRAY_S0");
    settling_.setSingleShot(true);
    connect(&settling_, &QTimer::timeout, this, [this] {
        findWindowTray();
        update();
    });
    hearTheRoot(connection);
    qGuiApp->installNativeEventFilter(this);
    findWindowTray();
    isPresent_ = windowTray_ != 0;
    if (!bus_.isConnected()) return;
    watcher_.setConnection(bus_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher_.addWatchedService(notifierWatcher);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayHost::askTheBus);
    // The watcher may be there without the tray that it watches for.
    for (const char* const change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus_.connect(notifierWatcher, notifierPath, notifierWatcher, change, this, SLOT(askTheBus()));
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
        isOnTheBus_ = reply.isValid() && reply.value().variant().toBool();
        update();
    });
}

/// Hears of its end, too, if there is one.
void TrayHost::findWindowTray() {
    xcb_connection_t* const connection = toolkitX11Connection();
    const auto cookie = xcb_get_selection_owner(connection, trayAtom_);
    const auto reply = adopt(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    windowTray_ = reply ? reply->owner : 0;
    if (windowTray_ == 0) return;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, windowTray_, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection);
}

bool TrayHost::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t") return false;
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    constexpr unsigned sentMask = 0x7f;
    switch (event->response_type & sentMask) {
        case XCB_CLIENT_MESSAGE: {
            // A tray tells of itself on the root window by MANAGER.
            const auto* const client = reinterpret_cast<const xcb_client_message_event_t*>(event);
            if (client->type == managerAtom_ && client->data.data32[1] == trayAtom_)
                settling_.start(settleTime);
            break;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto* const end = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
            if (windowTray_ == 0 || end->window != windowTray_) break;
            findWindowTray();
            update();
            break;
        }
        default: break;
    }
    return false;
}

void TrayHost::update() {
    const bool isPresent = isOnTheBus_ || windowTray_ != 0;
    if (std::exchange(isPresent_, isPresent) != isPresent) changed_(isPresent);
}

}  // namespace orbinex
