#include "link/bluez/bluez_objects.h"

#include <QDBusObjectPath>
#include <algorithm>

#include "link/bluez/bluez_names.h"

namespace orbinex {

namespace {

/// The value under the name when it has this very type.
template <class Type>
std::optional<Type> value(const QVariantMap& properties, const char* name) {
    const auto found = properties.find(QLatin1String(name));
    if (found == properties.end() || found->metaType() != QMetaType::fromType<Type>()) return std::nullopt;
    return found->template value<Type>();
}

bool flag(const QVariantMap& properties, const char* name) {
    return value<bool>(properties, name).value_or(false);
}

QString objectPath(const QVariantMap& properties, const char* name) {
    return value<QDBusObjectPath>(properties, name).value_or(QDBusObjectPath()).path();
}

std::optional<UUID> uuid(const QVariantMap& properties) {
    const auto text = value<QString>(properties, "UUID");
    return text ? UUID::parse(text->toStdString()) : std::nullopt;
}

bool isAddress(const std::string& text) {
    if (text.size() != 17) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isHex = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        if (i % 3 == 2 ? c != ':' : !isHex) return false;
    }
    return true;
}

}  // namespace

void BluezObjects::add(const QString& path, const BluezInterfaces& interfaces) {
    auto& object = objects_[path];
    for (auto it = interfaces.begin(); it != interfaces.end(); ++it) object.insert(it.key(), it.value());
}

void BluezObjects::remove(const QString& path, const QStringList& interfaces) {
    const auto object = objects_.find(path);
    if (object == objects_.end()) return;
    for (const auto& interface : interfaces) object->second.remove(interface);
    if (object->second.isEmpty()) objects_.erase(object);
}

void BluezObjects::change(const QString& path, const QString& interface, const QVariantMap& changed,
                          const QStringList& invalidated) {
    const auto object = objects_.find(path);
    if (object == objects_.end()) return;
    const auto properties = object->second.find(interface);
    if (properties == object->second.end()) return;
    for (auto it = changed.begin(); it != changed.end(); ++it) properties->insert(it.key(), it.value());
    for (const auto& name : invalidated) properties->remove(name);
}

const QVariantMap* BluezObjects::properties(const QString& path, const QString& interface) const {
    const auto object = objects_.find(path);
    if (object == objects_.end()) return nullptr;
    const auto found = object->second.constFind(interface);
    return found == object->second.constEnd() ? nullptr : &*found;
}

std::vector<QString> BluezObjects::pathsWith(const QString& interface, const QString& parent) const {
    std::vector<QString> result;
    for (const auto& [path, interfaces] : objects_) {
        const bool isBelow = parent.isEmpty() || path.startsWith(parent + QLatin1Char('/'));
        if (isBelow && interfaces.contains(interface)) result.push_back(path);
    }
    return result;
}

bool BluezDevice::offers(const UUID& service) const {
    return std::ranges::find(services, service) != services.end();
}

std::optional<BluezAdapter> readAdapter(const BluezObjects& objects, const QString& path) {
    const auto* properties = objects.properties(path, Bluez::adapter);
    if (!properties) return std::nullopt;
    BluezAdapter adapter{path, true, flag(*properties, "Powered")};
    if (const auto roles = value<QStringList>(*properties, "Roles")) {
        adapter.isCentral =
            roles->contains(QLatin1String("central")) || roles->contains(QLatin1String("central-peripheral"));
    }
    return adapter;
}

std::optional<BluezDevice> readDevice(const BluezObjects& objects, const QString& path) {
    const auto* properties = objects.properties(path, Bluez::device);
    if (!properties) return std::nullopt;
    BluezDevice device;
    device.path = path;
    device.adapter = objectPath(*properties, "Adapter");
    device.address = value<QString>(*properties, "Address").value_or(QString()).toStdString();
    if (!isAddress(device.address)) return std::nullopt;
    device.isAddressRandom = value<QString>(*properties, "AddressType") == QLatin1String("random");
    device.name = value<QString>(*properties, "Name").value_or(QString()).toStdString();
    if (const auto rssi = value<short>(*properties, "RSSI")) device.rssi = *rssi;
    device.isBonded = value<bool>(*properties, "Bonded").value_or(flag(*properties, "Paired"));
    device.areServicesResolved = flag(*properties, "ServicesResolved");
    device.linkInterface = Bluez::device;
    // BlueZ 5.66 forgets to tell of a connection when it learns of it by two ways at once.
    device.isConnected = device.areServicesResolved || flag(*properties, "Connected");
    const auto* const bearer = objects.properties(path, Bluez::bearerLE);
    if (const auto isLinked = bearer ? value<bool>(*bearer, "Connected") : std::nullopt) {
        device.linkInterface = Bluez::bearerLE;
        device.isConnected = *isLinked;
        const auto* const classic = objects.properties(path, Bluez::bearerBREDR);
        if (classic && flag(*classic, "Connected")) device.classic = ClassicLink::present;
    } else if (device.isConnected && !device.isAddressRandom &&
               properties->contains(QStringLiteral("Class"))) {
        // Only classic Bluetooth knows classes of devices, and it has no random addresses.
        device.classic = ClassicLink::possible;
    }
    for (const auto& text : value<QStringList>(*properties, "UUIDs").value_or(QStringList())) {
        if (const auto service = UUID::parse(text.toStdString())) device.services.push_back(*service);
    }
    return device;
}

std::optional<BluezCharacteristic> readCharacteristic(const BluezObjects& objects, const QString& path) {
    const auto* properties = objects.properties(path, Bluez::characteristic);
    if (!properties) return std::nullopt;
    const auto id = uuid(*properties);
    if (!id) return std::nullopt;
    const auto flags = value<QStringList>(*properties, "Flags").value_or(QStringList());
    return BluezCharacteristic{path,
                               objectPath(*properties, "Service"),
                               *id,
                               flags.contains(QLatin1String("write-without-response")),
                               flag(*properties, "Notifying"),
                               value<bool>(*properties, "NotifyAcquired").has_value()};
}

std::optional<UUID> readServiceUUID(const BluezObjects& objects, const QString& path) {
    const auto* properties = objects.properties(path, Bluez::gattService);
    return properties ? uuid(*properties) : std::nullopt;
}

std::vector<BluezAdapter> readAdapters(const BluezObjects& objects) {
    std::vector<BluezAdapter> result;
    for (const auto& path : objects.pathsWith(Bluez::adapter)) {
        if (auto adapter = readAdapter(objects, path)) result.push_back(*std::move(adapter));
    }
    return result;
}

QString findService(const BluezObjects& objects, const QString& device, const UUID& uuid) {
    QString newest;
    // Paths end in the handle as four hex digits, and a service that comes back gets a higher one.
    for (const auto& path : objects.pathsWith(Bluez::gattService, device)) {
        if (readServiceUUID(objects, path) == uuid) newest = path;
    }
    return newest;
}

std::vector<BluezCharacteristic> characteristicsOf(const BluezObjects& objects, const QString& service) {
    std::vector<BluezCharacteristic> result;
    for (const auto& path : objects.pathsWith(Bluez::characteristic, service)) {
        auto characteristic = readCharacteristic(objects, path);
        if (characteristic && characteristic->service == service) {
            result.push_back(*std::move(characteristic));
        }
    }
    return result;
}

}  // namespace orbinex
