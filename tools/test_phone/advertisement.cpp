#include "test_phone/advertisement.h"

#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test_phone {

namespace {

constexpr const char* interface = "org.bluez.LEAdvertisement1";

}  // namespace

Advertisement::Advertisement(BluezBus& bus) : ServedObject(bus, path, QDBusConnection::SingleNode) {}

std::optional<QDBusMessage> Advertisement::answer(const QDBusMessage& call) {
    if (call.interface() == QLatin1String(Bluez::properties)) {
        const auto service = QString::fromStdString(OrbinexProtocol::serviceUUID.text());
        return propertiesReply(
            call, interface,
            {{"Type", "peripheral"}, {"ServiceUUIDs", QStringList{service}}, {"LocalName", localName}});
    }
    if (call.member() != QLatin1String("Release")) return unknown(call);
    onReleased();
    return call.createReply();
}

}  // namespace orbinex::test_phone
