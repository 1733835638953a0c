#include "test_phone/served_object.h"

#include <QDBusVariant>

#include "link/bluez/bluez_names.h"

namespace orbinex::test_phone {

ServedObject::ServedObject(BluezBus& bus, const char* path,
                           QDBusConnection::VirtualObjectRegisterOption extent)
    : bus_(bus), path_(QLatin1String(path)) {
    bus_.connection().registerVirtualObject(path_, this, extent);
}

ServedObject::~ServedObject() {
    bus_.connection().unregisterObject(path_, QDBusConnection::UnregisterTree);
}

QString ServedObject::introspect(const QString&) const {
    return {};
}

bool ServedObject::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    if (!bus_.isFromOwner(message)) {
        send(message.createErrorReply(Bluez::accessDenied, "Only the Bluetooth service may ask"));
        return true;
    }
    if (const auto reply = answer(message)) send(*reply);
    return true;
}

void ServedObject::send(const QDBusMessage& message) {
    bus_.connection().send(message);
}

QDBusMessage ServedObject::unknown(const QDBusMessage& call) {
    return call.createErrorReply(QDBusError::UnknownMethod, "There is no such method");
}

QDBusMessage ServedObject::propertiesReply(const QDBusMessage& call, const char* interface,
                                           const QVariantMap& properties) {
    const auto arguments = call.arguments();
    if (arguments.value(0).toString() != QLatin1String(interface)) return unknown(call);
    if (call.member() == QLatin1String("GetAll")) return call.createReply(QVariant(properties));
    const auto property = properties.constFind(arguments.value(1).toString());
    if (call.member() != QLatin1String("Get") || property == properties.constEnd()) return unknown(call);
    return call.createReply(QVariant::fromValue(QDBusVariant(*property)));
}

}  // namespace orbinex::test_phone
