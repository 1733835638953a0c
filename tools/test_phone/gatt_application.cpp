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

void GattApplication::notify(Characteristic characteristic, ByteView value) {
    auto signal =
        QDBusMessage::createSignal(objectPath(characteristic), Bluez::properties, "PropertiesChanged");
    signal << QString(Bluez::characteristic) << QVariantMap{{"Value", byteArray(value)}} << QStringList();
    send(signal);
}

void GattApplication::forgetSubscriptions() {
    for (const auto characteristic : std::exchange(subscribed_, {})) onSubscription(characteristic, false);
}

GattApplication::ManagedObjects GattApplication::objects() const {
    ManagedObjects result;
    const auto serviceUUID = QString::fromStdString(OrbinexProtocol::serviceUUID.text());
    result[QDBusObjectPath(servicePath)][Bluez::gattService] = {{"UUID", serviceUUID}, {"Primary", true}};
    for (const auto characteristic : characteristics_) {
        QStringList flagList;
        for (const auto& flag : flags(characteristic, infoAccess_)) flagList << QString::fromStdString(flag);
        result[QDBusObjectPath(objectPath(characteristic))][Bluez::characteristic] = {
            {"UUID", QString::fromStdString(uuid(characteristic).text())},
            {"Service", QVariant::fromValue(QDBusObjectPath(servicePath))},
            {"Flags", flagList}};
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
    if (method == QLatin1String("StartNotify")) return subscribe(*characteristic, true, call);
    if (method == QLatin1String("StopNotify")) return subscribe(*characteristic, false, call);
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

QDBusMessage GattApplication::subscribe(Characteristic characteristic, bool isWanted,
                                        const QDBusMessage& call) {
    const bool isNews =
        isWanted ? subscribed_.insert(characteristic).second : subscribed_.erase(characteristic) > 0;
    if (isNews) onSubscription(characteristic, isWanted);
    return call.createReply();
}

}  // namespace orbinex::test_phone
