#include "link/bluez/bluez_bus.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <utility>

#include "link/bluez/bluez_names.h"

namespace orbinex {

namespace {

/// The bus library's own limit stands behind ours, which runs on the main queue's clock.
constexpr std::chrono::seconds behindOurs{5};

BluezBus::Reply readReply(const QDBusMessage& message) {
    if (message.type() == QDBusMessage::ErrorMessage) {
        return {{}, {}, BluezError{message.errorName(), message.errorMessage()}};
    }
    return {message.arguments(), message.signature(), std::nullopt};
}

}  // namespace

BluezBus::BluezBus(MainQueue& queue, const QDBusConnection& connection)
    : queue_(queue), connection_(connection) {
    watcher_.setConnection(connection_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
                     [this](const QString&, const QString&, const QString& newOwner) { setOwner(newOwner); });
}

BluezBus::~BluezBus() {
    stop();
}

void BluezBus::start() {
    if (std::exchange(isStarted_, true)) return;
    watcher_.addWatchedService(Bluez::service);
    connection_.connect({}, {}, "org.freedesktop.DBus.Local", "Disconnected", this, SLOT(busGone()));
    askForOwner();
}

void BluezBus::stop() {
    if (!std::exchange(isStarted_, false)) return;
    watcher_.removeWatchedService(Bluez::service);
    connection_.disconnect({}, {}, "org.freedesktop.DBus.Local", "Disconnected", this, SLOT(busGone()));
    ownerQuestion_.reset();
    pending_.clear();
    if (!owner_.isEmpty()) listen(false);
    owner_.clear();
    isOwnerKnown_ = false;
}

/// The bus is asked, not bluetoothd: a call to bluetoothd would start it, which is the system's affair.
void BluezBus::askForOwner() {
    auto question =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetNameOwner");
    question << QString(Bluez::service);
    ownerQuestion_ = std::make_unique<QDBusPendingCallWatcher>(connection_.asyncCall(question));
    QObject::connect(ownerQuestion_.get(), &QDBusPendingCallWatcher::finished, this, [this] {
        const QDBusPendingReply<QString> answer = *ownerQuestion_;
        ownerQuestion_.release()->deleteLater();
        // A change that was told meanwhile is newer than this answer.
        if (!isOwnerKnown_) setOwner(answer.isValid() ? answer.value() : QString());
    });
}

void BluezBus::setOwner(const QString& owner) {
    if (!isStarted_ || (isOwnerKnown_ && owner == owner_)) return;
    isOwnerKnown_ = true;
    pending_.clear();
    if (!owner_.isEmpty()) listen(false);
    owner_ = owner;
    if (!owner_.isEmpty()) listen(true);
    onOwnerChanged();
}

void BluezBus::busGone() {
    setOwner({});
}

void BluezBus::listen(bool isOn) {
    const auto set = [&](const char* interface, const char* signal, const char* slot) {
        if (isOn) {
            connection_.connect(owner_, {}, interface, signal, this, slot);
        } else {
            connection_.disconnect(owner_, {}, interface, signal, this, slot);
        }
    };
    set(Bluez::objectManager, "InterfacesAdded", SLOT(interfacesAdded(QDBusMessage)));
    set(Bluez::objectManager, "InterfacesRemoved", SLOT(interfacesRemoved(QDBusMessage)));
    set(Bluez::properties, "PropertiesChanged", SLOT(propertiesChanged(QDBusMessage)));
}

bool BluezBus::isFromOwner(const QDBusMessage& message) const {
    return !owner_.isEmpty() && message.service() == owner_;
}

void BluezBus::call(const QString& path, const char* interface, const char* method,
                    const QVariantList& arguments, Delay limit, Completion done) {
    const auto pending = pending_.emplace(pending_.end());
    pending->done = std::move(done);
    pending->limit = queue_.after(limit, [this, pending] {
        finish(pending, {{}, {}, BluezError{Bluez::noReply, {}}});
        if (isOwned()) onSilence();
    });
    // Without bluetoothd there is nobody to ask; the limit answers.
    if (owner_.isEmpty()) return;
    auto message = QDBusMessage::createMethodCall(owner_, path, interface, method);
    message.setArguments(arguments);
    const auto backstop = std::chrono::duration_cast<std::chrono::milliseconds>(limit + behindOurs);
    pending->watcher = std::make_unique<QDBusPendingCallWatcher>(
        connection_.asyncCall(message, static_cast<int>(backstop.count())));
    QObject::connect(
        pending->watcher.get(), &QDBusPendingCallWatcher::finished, this,
        [this, pending](QDBusPendingCallWatcher* watcher) { finish(pending, readReply(watcher->reply())); });
}

void BluezBus::finish(PendingList::iterator pending, const Reply& reply) {
    Pending over = std::move(*pending);
    pending_.erase(pending);
    // It may be what is calling.
    if (over.watcher) over.watcher.release()->deleteLater();
    over.done(reply);
}

void BluezBus::interfacesAdded(const QDBusMessage& message) {
    if (!isFromOwner(message) || message.signature() != QLatin1String("oa{sa{sv}}")) return;
    const auto arguments = message.arguments();
    onInterfacesAdded(arguments[0].value<QDBusObjectPath>().path(),
                      qdbus_cast<BluezInterfaces>(arguments[1].value<QDBusArgument>()));
}

void BluezBus::interfacesRemoved(const QDBusMessage& message) {
    if (!isFromOwner(message) || message.signature() != QLatin1String("oas")) return;
    const auto arguments = message.arguments();
    onInterfacesRemoved(arguments[0].value<QDBusObjectPath>().path(), arguments[1].toStringList());
}

void BluezBus::propertiesChanged(const QDBusMessage& message) {
    if (!isFromOwner(message) || message.signature() != QLatin1String("sa{sv}as")) return;
    const auto arguments = message.arguments();
    onPropertiesChanged(message.path(), arguments[0].toString(),
                        qdbus_cast<QVariantMap>(arguments[1].value<QDBusArgument>()),
                        arguments[2].toStringList());
}

}  // namespace orbinex
