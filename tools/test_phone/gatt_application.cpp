#include "test_phone/gatt_application.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <utility>

#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test_phone {

namespace {

const QString servicePath = QString(GattApplication::path) + "/service";

QString objectPath(Characteristic characteristic) {
    const auto last = name(characteristic);
    return servicePath + "/" + QLatin1String(last.data(), static_cast<qsizetype>(last.size()));
}

QByteArray byteArray(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

}  // namespace

GattApplication::GattApplication(BluezBus& bus, std::set<Characteristic> characteristics,
                                 InfoAccess infoAccess)
    : ServedObject(bus, path, QDBusConnection::SubPath),
      characteristics_(std::move(characteristics)),
      infoAccess_(infoAccess) {
    qDBusRegisterMetaType<BluezInterfaces>();
    qDBusRegisterMetaType<ManagedObjects>();
}

std::vector<Characteristic> GattApplication::subscribed() const {
    std::vector<Characteristic> result;
    for (const auto& [characteristic, subscription] : subscriptions_) result.push_back(characteristic);
    return result;
}

bool GattApplication::notify(Characteristic characteristic, ByteView value) {
    const auto subscription = subscriptions_.find(characteristic);
    if (subscription == subscriptions_.end()) return false;
    const auto former = latest_ ? subscriptions_.find(*latest_) : subscriptions_.end();
    // Each has its own socket, and a phone's notifications go out in order.
    if (former != subscriptions_.end() && former != subscription) former->second->waitUntilTaken();
    latest_ = characteristic;
    return subscription->second->notify(value);
}

void GattApplication::forgetSubscriptions() {
    for (const auto characteristic : subscribed()) end(characteristic);
}

GattApplication::ManagedObjects GattApplication::objects() const {
    ManagedObjects result;
    const auto serviceUUID = QString::fromStdString(OrbinexProtocol::serviceUUID.text());
    result[QDBusObjectPath(servicePath)][Bluez::gattService] = {{"UUID", serviceUUID}, {"Primary", true}};
    for (const auto characteristic : characteristics_) {
        QStringList flagList;
        for (const auto& flag : flags(characteristic, infoAccess_)) flagList << QString::fromStdString(flag);
        QVariantMap properties{{"UUID", QString::fromStdString(uuid(characteristic).text())},
                               {"Service", QVariant::fromValue(QDBusObjectPath(servicePath))},
                               {"Flags", flagList}};
        // That it is there at all asks bluetoothd to take notifications from a socket.
        if (flagList.contains("notify")) properties["NotifyAcquired"] = isSubscribed(characteristic);
        result[QDBusObjectPath(objectPath(characteristic))][Bluez::characteristic] = properties;
    }
    return result;
}

std::optional<Characteristic> GattApplication::characteristicAt(const QString& wanted) const {
    for (const auto characteristic : characteristics_) {
        if (objectPath(characteristic) == wanted) return characteristic;
    }
    return std::nullopt;
}

std::optional<QDBusMessage> GattApplication::answer(const QDBusMessage& call) {
    const auto method = call.member();
    if (call.path() == QLatin1String(path) && method == QLatin1String("GetManagedObjects")) {
        return call.createReply(QVariant::fromValue(objects()));
    }
    if (call.interface() == QLatin1String(Bluez::properties)) {
        const auto interfaces = objects().value(QDBusObjectPath(call.path()));
        if (interfaces.isEmpty()) return unknown(call);
        return propertiesReply(call, qPrintable(interfaces.firstKey()), interfaces.first());
    }
    const auto characteristic = characteristicAt(call.path());
    if (!characteristic) return unknown(call);
    if (method == QLatin1String("ReadValue") && characteristic == Characteristic::info) return read(call);
    if (method == QLatin1String("WriteValue")) return write(*characteristic, call);
    if (method == QLatin1String("AcquireNotify")) return acquire(*characteristic, call);
    return unknown(call);
}

std::optional<QDBusMessage> GattApplication::read(const QDBusMessage& call) {
    onRead();
    if (info.kind == Command::Info::Kind::silent) return std::nullopt;
    if (info.kind == Command::Info::Kind::refused) {
        return call.createErrorReply("org.bluez.Error.Failed", "Refused");
    }
    const auto options = qdbus_cast<QVariantMap>(call.arguments().value(0).value<QDBusArgument>());
    const auto offset = options.value("offset").toUInt();
    if (offset > info.bytes.size()) return call.createErrorReply("org.bluez.Error.InvalidOffset", "Too far");
    return call.createReply(byteArray(ByteView(info.bytes).subspan(offset)));
}

QDBusMessage GattApplication::write(Characteristic characteristic, const QDBusMessage& call) {
    const auto value = call.arguments().value(0).toByteArray();
    onWritten(characteristic, {reinterpret_cast<const std::uint8_t*>(value.constData()),
                               static_cast<std::size_t>(value.size())});
    return call.createReply();
}

QDBusMessage GattApplication::acquire(Characteristic characteristic, const QDBusMessage& call) {
    const auto options = qdbus_cast<QVariantMap>(call.arguments().value(0).value<QDBusArgument>());
    end(characteristic);
    auto subscription = std::make_unique<Subscription>([this, characteristic] { end(characteristic); });
    const auto farEnd = QVariant::fromValue(subscription->takeFarEnd());
    subscriptions_[characteristic] = std::move(subscription);
    onSubscription(characteristic, true);
    const auto mtu = QVariant::fromValue(static_cast<quint16>(options.value("mtu").toUInt()));
    return call.createReply(QVariantList{farEnd, mtu});
}

void GattApplication::end(Characteristic characteristic) {
    const auto subscription = subscriptions_.extract(characteristic);
    if (!subscription.empty()) onSubscription(characteristic, false);
}

}  // namespace orbinex::test_phone
