#include "fake_bluez.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <algorithm>
#include <array>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test {

namespace {

using ManagedObjects = QMap<QDBusObjectPath, BluezInterfaces>;

constexpr const char* failed = "org.bluez.Error.Failed";
constexpr const char* inProgress = "org.bluez.Error.InProgress";
constexpr const char* notPermitted = "org.bluez.Error.NotPermitted";
constexpr const char* notAuthenticated = "org.bluez.Error.AuthenticationFailed";
/// How long BlueZ tries to connect a device that is not there.
constexpr std::chrono::seconds connectPatience{41};
constexpr quint16 mtu = 517;

QString lower(const UUID& uuid) {
    return QString::fromStdString(uuid.text()).toLower();
}

}  // namespace

FakeBluez::FakeBluez(QString busAddress, MainQueue& queue)
    : busAddress_(std::move(busAddress)), queue_(queue) {
    qDBusRegisterMetaType<BluezInterfaces>();
    qDBusRegisterMetaType<ManagedObjects>();
}

// The process

void FakeBluez::rise() {
    static int number = 0;
    connectionName_ = QString("bluetoothd-%1").arg(++number);
    connection_ = QDBusConnection::connectToBus(busAddress_, connectionName_);
    connection_->registerVirtualObject("/", this, QDBusConnection::SubPath);
    connection_->registerService(Bluez::service);
}

void FakeBluez::vanish() {
    if (!connection_) return;
    closeSockets("/");
    connection_->unregisterService(Bluez::service);
    connection_.reset();
    QDBusConnection::disconnectFromBus(connectionName_);
    isDiscovering_ = false;
    agent_.reset();
    connecting_.reset();
    givesUp_.cancel();
    kept.clear();
}

bool FakeBluez::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    message.setDelayedReply(true);
    calls.push_back(message);
    const auto script = scripts.find(message.member());
    if (script == scripts.end()) {
        act(message);
    } else {
        const auto scripted = script->second;
        scripted(message);
    }
    return true;
}

int FakeBluez::count(const QString& method) const {
    return static_cast<int>(std::ranges::count(calls, method, &QDBusMessage::member));
}

void FakeBluez::answer(const QDBusMessage& call, const QVariantList& arguments) {
    ++sent;
    connection_->send(call.createReply(arguments));
}

void FakeBluez::fail(const QDBusMessage& call, const char* name, const char* text) {
    ++sent;
    connection_->send(call.createErrorReply(name, text));
}

// Objects

void FakeBluez::signal(const QString& path, const char* interface, const char* name,
                       const QVariantList& arguments) {
    if (!connection_) return;
    auto message = QDBusMessage::createSignal(path, interface, name);
    message.setArguments(arguments);
    ++sent;
    connection_->send(message);
}

void FakeBluez::add(const QString& path, const BluezInterfaces& interfaces) {
    objects[path] = interfaces;
    signal("/", Bluez::objectManager, "InterfacesAdded",
           {QVariant::fromValue(QDBusObjectPath(path)), QVariant::fromValue(interfaces)});
}

void FakeBluez::remove(const QString& path) {
    const auto found = objects.find(path);
    if (found == objects.end()) return;
    const QStringList interfaces = found->second.keys();
    objects.erase(found);
    signal("/", Bluez::objectManager, "InterfacesRemoved",
           {QVariant::fromValue(QDBusObjectPath(path)), interfaces});
}

void FakeBluez::change(const QString& path, const QString& interface, const QVariantMap& changed,
                       const QStringList& invalidated) {
    if (!objects.contains(path)) return;
    auto& properties = objects[path][interface];
    for (auto it = changed.begin(); it != changed.end(); ++it) properties[it.key()] = it.value();
    for (const auto& name : invalidated) properties.remove(name);
    signal(path, Bluez::properties, "PropertiesChanged", {interface, changed, invalidated});
}

void FakeBluez::addAdapter(const QString& path, bool isPowered) {
    add(path, {{Bluez::adapter,
                {{"Powered", isPowered},
                 {"Discovering", false},
                 {"Roles", QStringList{"central", "peripheral"}}}}});
}

void FakeBluez::removeAdapter(const QString& path) {
    isDiscovering_ = false;
    endConnecting("Input/output error");
    closeSockets(path);
    std::vector<QString> gone;
    for (const auto& [object, interfaces] : objects) {
        if (object.startsWith(path)) gone.push_back(object);
    }
    for (const auto& object : gone) remove(object);
    for (auto& phone : phones) phone.service.clear();
}

void FakeBluez::setPowered(const QString& path, bool isPowered) {
    if (!isPowered) {
        isDiscovering_ = false;
        endConnecting("Input/output error");
        for (auto& phone : phones) {
            if (phone.path.startsWith(path) && isConnected(phone)) drop(phone);
        }
    }
    change(
        path, Bluez::adapter,
        isPowered ? QVariantMap{{"Powered", true}} : QVariantMap{{"Powered", false}, {"Discovering", false}});
}

// Calls

void FakeBluez::act(const QDBusMessage& call) {
    if (call.member() == "GetManagedObjects") {
        ManagedObjects all;
        for (const auto& [path, interfaces] : objects) all[QDBusObjectPath(path)] = interfaces;
        return answer(call, {QVariant::fromValue(all)});
    }
    const auto object = objects.find(call.path());
    if (object == objects.end() && call.path() != Bluez::managerPath) {
        return fail(call, "org.freedesktop.DBus.Error.UnknownObject", "No such object");
    }
    if (call.interface() == Bluez::agentManager) return actOnManager(call);
    if (call.interface() == Bluez::adapter) return actOnAdapter(call);
    if (call.member() == "Get") {
        const auto value = object->second[call.arguments()[0].toString()][call.arguments()[1].toString()];
        return answer(call, {QVariant::fromValue(QDBusVariant(value))});
    }
    FakePhone& phone = *phoneAt(call.path());
    if (call.interface() == Bluez::device || call.interface() == Bluez::bearerLE)
        return actOnDevice(call, phone);
    actOnCharacteristic(call, phone);
}

void FakeBluez::actOnManager(const QDBusMessage& call) {
    if (call.member() == "RegisterAgent") {
        agent_ = {call.service(), call.arguments()[0].value<QDBusObjectPath>().path()};
    } else if (call.member() == "UnregisterAgent") {
        if (!agent_) return fail(call, "org.bluez.Error.DoesNotExist", "Does Not Exist");
        agent_.reset();
    }
    answer(call);
}

void FakeBluez::actOnAdapter(const QDBusMessage& call) {
    if (!objects[call.path()][Bluez::adapter]["Powered"].toBool()) {
        return fail(call, "org.bluez.Error.NotReady", "Resource Not Ready");
    }
    if (call.member() == "StartDiscovery") {
        if (isDiscovering_) return fail(call, inProgress, "Operation already in progress");
        isDiscovering_ = true;
        change(call.path(), Bluez::adapter, {{"Discovering", true}});
        for (auto& phone : phones) advertise(phone);
    } else if (call.member() == "StopDiscovery") {
        if (!isDiscovering_) return fail(call, failed, "No discovery started");
        isDiscovering_ = false;
        for (const auto& phone : phones) {
            if (!phone.path.isEmpty()) change(phone.path, Bluez::device, {}, {"RSSI"});
        }
        change(call.path(), Bluez::adapter, {{"Discovering", false}});
    }
    answer(call);
}

void FakeBluez::actOnDevice(const QDBusMessage& call, FakePhone& phone) {
    if (call.member() == "Connect") return startConnect(call, phone);
    if (call.member() == "Pair") return startPair(call, phone);
    if (call.member() == "Disconnect") {
        endConnecting("br-connection-canceled");
        if (answersFirst) answer(call);
        if (isConnected(phone)) drop(phone);
        if (call.interface() == Bluez::device && phone.hasClassicLink) setClassicLink(phone, false);
        if (!answersFirst) answer(call);
        return;
    }
    answer(call);
}

void FakeBluez::endConnecting(const char* text) {
    if (connecting_) fail(*std::exchange(connecting_, std::nullopt), failed, text);
    givesUp_.cancel();
}

void FakeBluez::startConnect(const QDBusMessage& call, FakePhone& phone) {
    if (connecting_) return fail(call, failed, "Operation already in progress");
    if (!phone.isInRange) {
        connecting_ = call;
        givesUp_ = queue_.after(connectPatience, [this] { endConnecting("le-connection-abort-by-local"); });
        return;
    }
    if (phone.isBonded && phone.hasForgottenBond) return fail(call, failed, "le-connection-abort-by-local");
    if (answersFirst) answer(call);
    if (!isConnected(phone)) connectPhone(phone);
    if (!answersFirst) answer(call);
}

void FakeBluez::startPair(const QDBusMessage& call, FakePhone& phone) {
    const auto end = [this, call, &phone](bool isAccepted) {
        if (!isAccepted || !phone.takesPairing) {
            fail(call, notAuthenticated, "Authentication Failed");
            return drop(phone);
        }
        if (answersFirst) answer(call);
        bond(phone);
        if (!answersFirst) answer(call);
    };
    if (!agent_ || phone.isBonded) return end(false);
    askAgent("RequestConfirmation", {QVariant::fromValue(QDBusObjectPath(phone.path)), 1234U}, end);
}

void FakeBluez::askAgent(const char* method, const QVariantList& arguments, std::function<void(bool)> done) {
    auto question = QDBusMessage::createMethodCall(agent_->first, agent_->second, Bluez::agent, method);
    question.setArguments(arguments);
    ++sent;
    auto* const watcher = new QDBusPendingCallWatcher(connection_->asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, done = std::move(done)] {
        watcher->deleteLater();
        if (connection_) done(!watcher->isError());
    });
}

void FakeBluez::actOnCharacteristic(const QDBusMessage& call, FakePhone& phone) {
    const auto path = call.path();
    if (!isConnected(phone)) return fail(call, failed, "Not connected");
    if (call.member() == "ReadValue") return answer(call, {phone.info});
    if (call.member() == "WriteValue") return answer(call);
    dropSocketThatWasClosed(path);
    if (sockets.contains(path)) return fail(call, notPermitted, "Notify acquired");
    if (call.member() == "AcquireNotify") {
        std::array<int, 2> ends{};
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
        sockets[path] = ends[0];
        const QDBusUnixFileDescriptor far(ends[1]);
        ::close(ends[1]);
        change(path, Bluez::characteristic, {{"NotifyAcquired", true}});
        return answer(call, {QVariant::fromValue(far), QVariant::fromValue(mtu)});
    }
    if (call.member() == "StartNotify") change(path, Bluez::characteristic, {{"Notifying", true}});
    if (call.member() == "StopNotify") change(path, Bluez::characteristic, {{"Notifying", false}});
    answer(call);
}

/// By the other end, which is how a subscription is given back.
void FakeBluez::dropSocketThatWasClosed(const QString& path) {
    const auto socket = sockets.find(path);
    if (socket == sockets.end()) return;
    pollfd end{socket->second, 0, 0};
    if (::poll(&end, 1, 0) == 1) closeSockets(path);
}

// Phones

FakePhone& FakeBluez::addPhone(const QString& address, const QString& name) {
    using namespace OrbinexProtocol;
    auto& phone = phones.emplace_back();
    phone.address = address;
    phone.name = name;
    phone.characteristics = {mouseCharacteristicUUID, keyboardCharacteristicUUID, infoCharacteristicUUID,
                             controlCharacteristicUUID};
    return phone;
}

FakePhone* FakeBluez::phoneAt(const QString& path) {
    const auto found = std::ranges::find_if(
        phones, [&](const FakePhone& phone) { return !phone.path.isEmpty() && path.startsWith(phone.path); });
    return found == phones.end() ? nullptr : &*found;
}

bool FakeBluez::isConnected(const FakePhone& phone) const {
    if (phone.hasClassicLink) return phone.isLinked;
    const auto found = objects.find(phone.path);
    return found != objects.end() && found->second[Bluez::device]["Connected"].toBool();
}

BluezInterfaces FakeBluez::deviceObject(const FakePhone& phone) const {
    QVariantMap properties{{"Adapter", QVariant::fromValue(QDBusObjectPath(hci0))},
                           {"Address", phone.address},
                           {"AddressType", phone.isAddressRandom ? "random" : "public"},
                           {"Name", phone.name},
                           {"Alias", phone.name},
                           {"UUIDs", QStringList{lower(OrbinexProtocol::serviceUUID)}},
                           {"Paired", phone.isBonded},
                           {"Bonded", phone.isBonded},
                           {"Connected", false},
                           {"ServicesResolved", false}};
    if (isDiscovering_) properties["RSSI"] = QVariant::fromValue<short>(-60);
    if (phone.isClassic) properties["Class"] = 0x7a020cU;
    if (phone.hasClassicLink) properties["Connected"] = properties["ServicesResolved"] = true;
    BluezInterfaces interfaces{{Bluez::device, properties}};
    if (phone.tellsBearers) {
        interfaces[Bluez::bearerLE] = {{"Connected", false}};
        interfaces[Bluez::bearerBREDR] = {{"Connected", phone.hasClassicLink}};
    }
    return interfaces;
}

void FakeBluez::advertise(FakePhone& phone) {
    if (!isDiscovering_ || !phone.isInRange || isConnected(phone)) return;
    if (phone.path.isEmpty()) phone.path = QString(hci0) + "/dev_" + QString(phone.address).replace(':', '_');
    if (!objects.contains(phone.path)) return add(phone.path, deviceObject(phone));
    change(phone.path, Bluez::device,
           {{"RSSI", QVariant::fromValue<short>(-60)}, {"Name", phone.name}, {"Alias", phone.name}});
}

void FakeBluez::connectPhone(FakePhone& phone) {
    // BlueZ reads the device's own name and overwrites what was advertised.
    phone.isLinked = true;
    if (phone.tellsBearers) change(phone.path, Bluez::bearerLE, {{"Connected", true}});
    change(phone.path, Bluez::device, {{"Connected", true}});
    change(phone.path, Bluez::device, {{"Name", "Somebody's phone"}, {"Alias", "Somebody's phone"}});
    if (phone.hasService && phone.service.isEmpty()) offerService(phone, 0x15);
    change(phone.path, Bluez::device, {{"ServicesResolved", true}});
}

void FakeBluez::drop(FakePhone& phone) {
    closeSockets(phone.path);
    phone.isLinked = false;
    if (phone.tellsBearers) change(phone.path, Bluez::bearerLE, {{"Connected", false}});
    change(phone.path, Bluez::device, {{"ServicesResolved", false}, {"Connected", phone.hasClassicLink}});
}

void FakeBluez::setClassicLink(FakePhone& phone, bool isThere) {
    phone.hasClassicLink = isThere;
    if (phone.tellsBearers) change(phone.path, Bluez::bearerBREDR, {{"Connected", isThere}});
    const bool isConnected = isThere || phone.isLinked;
    change(phone.path, Bluez::device, {{"Connected", isConnected}, {"ServicesResolved", isConnected}});
}

void FakeBluez::bond(FakePhone& phone) {
    phone.isBonded = phone.keepsBond;
    change(phone.path, Bluez::device, {{"Bonded", phone.keepsBond}, {"Paired", true}});
    if (!phone.keepsBond || !phone.isAddressRandom) return;
    phone.address = phone.identity;
    phone.isAddressRandom = false;
    change(phone.path, Bluez::device, {{"Address", phone.address}, {"AddressType", "public"}});
}

void FakeBluez::offerService(FakePhone& phone, int handle) {
    phone.service = phone.path + QString("/service%1").arg(handle, 4, 16, QChar('0'));
    const auto service = QVariant::fromValue(QDBusObjectPath(phone.service));
    add(phone.service, {{Bluez::gattService, {{"UUID", lower(OrbinexProtocol::serviceUUID)}}}});
    for (const auto& uuid : phone.characteristics) {
        QVariantMap properties{{"UUID", lower(uuid)},
                               {"Service", service},
                               {"Notifying", false},
                               {"Flags", QStringList{"read", "write-without-response", "notify"}}};
        if (phone.offersSockets) properties["NotifyAcquired"] = false;
        ++handle;
        add(phone.service + QString("/char%1").arg(handle, 4, 16, QChar('0')),
            {{Bluez::characteristic, properties}});
    }
    change(phone.path, Bluez::device, {{"UUIDs", QStringList{lower(OrbinexProtocol::serviceUUID)}}});
}

void FakeBluez::withdrawService(FakePhone& phone) {
    closeSockets(phone.service);
    std::vector<QString> below;
    for (const auto& [path, interfaces] : objects) {
        if (path.startsWith(phone.service)) below.push_back(path);
    }
    std::ranges::reverse(below);
    for (const auto& path : below) remove(path);
    phone.service.clear();
    change(phone.path, Bluez::device, {{"UUIDs", QStringList{}}});
}

void FakeBluez::closeSockets(const QString& below) {
    for (auto it = sockets.begin(); it != sockets.end();) {
        if (!it->first.startsWith(below)) {
            ++it;
            continue;
        }
        ::close(it->second);
        if (connection_) change(it->first, Bluez::characteristic, {{"NotifyAcquired", false}});
        it = sockets.erase(it);
    }
}

void FakeBluez::notify(const FakePhone& phone, const UUID& characteristic, const QByteArray& value) {
    for (const auto& [path, interfaces] : objects) {
        const auto properties = interfaces[Bluez::characteristic];
        if (phone.service.isEmpty() || !path.startsWith(phone.service) ||
            properties["UUID"] != lower(characteristic)) {
            continue;
        }
        const auto socket = sockets.find(path);
        if (socket != sockets.end()) {
            ::send(socket->second, value.constData(), static_cast<std::size_t>(value.size()), MSG_NOSIGNAL);
        } else if (properties["Notifying"].toBool()) {
            signal(path, Bluez::properties, "PropertiesChanged",
                   {Bluez::characteristic, QVariantMap{{"Value", value}}, QStringList{}});
        }
    }
}

}  // namespace orbinex::test
