#include "vm/bluetooth.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <stdexcept>

namespace orbinex::test {

using namespace std::chrono_literals;

namespace {

constexpr int callLimitMilliseconds = 60'000;
constexpr Milliseconds switchLimit = 60s;
constexpr Milliseconds endingLimit = 15s;

const QString busName = QStringLiteral("org.bluez");
const QString adapterInterface = QStringLiteral("org.bluez.Adapter1");
const QString deviceInterface = QStringLiteral("org.bluez.Device1");
const QString characteristicInterface = QStringLiteral("org.bluez.GattCharacteristic1");

QString pathOf(const std::string& adapter) {
    return QStringLiteral("/org/bluez/") + QString::fromStdString(adapter);
}

QDBusMessage call(const QDBusConnection& bus, const QString& path, const QString& interface,
                  const QString& method, const QVariantList& arguments = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(busName, path, interface, method);
    // It is the scenario that starts bluetoothd, never the bus.
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, callLimitMilliseconds);
}

bool hasSucceeded(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage;
}

}  // namespace

Bluetooth::Bluetooth() : bus_(QDBusConnection::systemBus()) {
    if (!bus_.isConnected()) throw std::runtime_error("no system bus");
}

bool Bluetooth::isUp() const {
    return hasSucceeded(
        call(bus_, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
}

Bluetooth::Objects Bluetooth::objects() const {
    const QDBusMessage reply =
        call(bus_, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.ObjectManager"),
             QStringLiteral("GetManagedObjects"));
    Objects result;
    if (!hasSucceeded(reply)) return result;
    QMap<QDBusObjectPath, QMap<QString, QVariantMap>> byPath;
    reply.arguments().at(0).value<QDBusArgument>() >> byPath;
    for (auto object = byPath.cbegin(); object != byPath.cend(); ++object)
        result.insert(object.key().path(), object.value());
    return result;
}

QVariantMap Bluetooth::adapterProperties(const std::string& adapter) const {
    return objects().value(pathOf(adapter)).value(adapterInterface);
}

std::vector<std::string> Bluetooth::adapters() const {
    std::vector<std::string> names;
    const Objects all = objects();
    for (auto object = all.cbegin(); object != all.cend(); ++object) {
        if (object->contains(adapterInterface))
            names.push_back(object.key().section(QLatin1Char('/'), -1).toStdString());
    }
    return names;
}

std::string Bluetooth::address(const std::string& adapter) const {
    return adapterProperties(adapter).value(QStringLiteral("Address")).toString().toStdString();
}

bool Bluetooth::isPowered(const std::string& adapter) const {
    return adapterProperties(adapter).value(QStringLiteral("Powered")).toBool();
}

bool Bluetooth::isDiscovering(const std::string& adapter) const {
    return adapterProperties(adapter).value(QStringLiteral("Discovering")).toBool();
}

bool Bluetooth::isPairable(const std::string& adapter) const {
    return adapterProperties(adapter).value(QStringLiteral("Pairable")).toBool();
}

testing::AssertionResult Bluetooth::setPowered(const std::string& adapter, bool isPowered) {
    const QDBusMessage reply =
        call(bus_, pathOf(adapter), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
             {adapterInterface, QStringLiteral("Powered"),
              QVariant::fromValue(QDBusVariant(QVariant(isPowered)))});
    if (!hasSucceeded(reply)) return testing::AssertionFailure() << reply.errorMessage().toStdString();
    if (!waitUntil([&] { return this->isPowered(adapter) == isPowered; }, switchLimit))
        return testing::AssertionFailure() << adapter << " cannot be switched " << (isPowered ? "on" : "off");
    return testing::AssertionSuccess();
}

std::vector<Bluetooth::Device> Bluetooth::devices(const std::string& adapter) const {
    std::vector<Device> result;
    const Objects all = objects();
    for (auto object = all.cbegin(); object != all.cend(); ++object) {
        if (!object.key().startsWith(pathOf(adapter) + QLatin1Char('/'))) continue;
        if (!object->contains(deviceInterface)) continue;
        const QVariantMap device = object->value(deviceInterface);
        const auto flag = [&](const char* name) { return device.value(QString::fromLatin1(name)).toBool(); };
        result.push_back({.address = device.value(QStringLiteral("Address")).toString().toStdString(),
                          .name = device.value(QStringLiteral("Name")).toString().toStdString(),
                          .isConnected = flag("Connected"),
                          .isPaired = flag("Paired"),
                          .isBonded = flag("Bonded"),
                          .areServicesResolved = flag("ServicesResolved")});
    }
    return result;
}

bool Bluetooth::forget(const std::string& adapter, const std::string& address) {
    const QString path = pathOf(adapter) + QStringLiteral("/dev_") +
                         QString::fromStdString(address).replace(QLatin1Char(':'), QLatin1Char('_'));
    return hasSucceeded(call(bus_, pathOf(adapter), adapterInterface, QStringLiteral("RemoveDevice"),
                             {QVariant::fromValue(QDBusObjectPath(path))}));
}

void Bluetooth::forgetAll(const std::string& adapter) {
    for (const Device& device : devices(adapter)) forget(adapter, device.address);
}

std::vector<std::string> Bluetooth::leftovers(const std::string& adapter) const {
    std::vector<std::string> result;
    const Objects all = objects();
    const QVariantMap properties = all.value(pathOf(adapter)).value(adapterInterface);
    if (properties.isEmpty()) result.push_back("nothing can be known: the adapter is not there");
    if (properties.value(QStringLiteral("Discovering")).toBool()) result.emplace_back("a scan runs");
    if (properties.value(QStringLiteral("Pairable")).toBool())
        result.emplace_back("a pairing agent is registered");
    for (auto object = all.cbegin(); object != all.cend(); ++object) {
        if (!object.key().startsWith(pathOf(adapter) + QLatin1Char('/'))) continue;
        const std::string path = object.key().toStdString();
        if (object->value(deviceInterface).value(QStringLiteral("Connected")).toBool())
            result.push_back("connected: " + path);
        const QVariantMap characteristic = object->value(characteristicInterface);
        for (const char* subscribed : {"Notifying", "NotifyAcquired", "WriteAcquired"}) {
            if (characteristic.value(QString::fromLatin1(subscribed)).toBool())
                result.push_back(std::string(subscribed) + ": " + path);
        }
    }
    return result;
}

testing::AssertionResult Bluetooth::nothingIsLeft(const std::string& adapter) const {
    std::vector<std::string> left;
    if (waitUntil([&] { return (left = leftovers(adapter)).empty(); }, endingLimit))
        return testing::AssertionSuccess();
    auto failure = testing::AssertionFailure() << "left on " << adapter << ':';
    for (const std::string& one : left) failure << "\n    " << one;
    return failure;
}

}  // namespace orbinex::test
