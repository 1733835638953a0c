#include "test_phone/phone_radio.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <utility>

#include "link/bluez/bluez_names.h"
#include "test_phone/identity.h"

namespace orbinex::test_phone {

namespace {

constexpr const char* gattManager = "org.bluez.GattManager1";
constexpr const char* advertisingManager = "org.bluez.LEAdvertisingManager1";

using ManagedObjects = QMap<QDBusObjectPath, BluezInterfaces>;

QVariant objectPath(const char* path) {
    return QVariant::fromValue(QDBusObjectPath(path));
}

std::string lastPart(const QString& path) {
    return path.section('/', -1).toStdString();
}

}  // namespace

PhoneRadio::PhoneRadio(BluezBus& bus, std::string adapterName, GattApplication& application,
                       Advertisement& advertisement, PhoneAgent& agent)
    : bus_(bus),
      adapterName_(std::move(adapterName)),
      application_(application),
      advertisement_(advertisement),
      agent_(agent),
      calls_(bus) {}

void PhoneRadio::start() {
    advertisement_.onReleased = [this] { registered_.isAdvertising = false; };
    bus_.onOwnerChanged = [this] { ownerChanged(); };
    bus_.onSilence = [] {};
    bus_.onInterfacesAdded = [this](const QString& path, const BluezInterfaces& interfaces) {
        objects_.add(path, interfaces);
        review();
    };
    bus_.onInterfacesRemoved = [this](const QString& path, const QStringList& interfaces) {
        objects_.remove(path, interfaces);
        review();
    };
    bus_.onPropertiesChanged = [this](const QString& path, const QString& interface,
                                      const QVariantMap& changed, const QStringList& invalidated) {
        // Of what other programs read from other peripherals, nothing is kept.
        if (interface != QLatin1String(Bluez::adapter) && interface != QLatin1String(Bluez::device)) return;
        objects_.change(path, interface, changed, invalidated);
        reviewHosts();
    };
    bus_.start();
}

void PhoneRadio::ownerChanged() {
    objects_.clear();
    if (!bus_.isOwned()) return goAway("bluetoothd is not running");
    if (!adapter_.isEmpty()) goAway("bluetoothd has been started anew");
    bus_.call("/", Bluez::objectManager, "GetManagedObjects", {}, BluezBus::ordinaryLimit,
              [this](const BluezBus::Reply& reply) { objectsTold(reply); });
}

void PhoneRadio::objectsTold(const BluezBus::Reply& reply) {
    if (reply.error) return goAway("bluetoothd does not answer: " + reply.error->text.toStdString());
    if (reply.signature == QLatin1String("a{oa{sa{sv}}}")) {
        const auto objects = qdbus_cast<ManagedObjects>(reply.arguments[0].value<QDBusArgument>());
        for (auto it = objects.begin(); it != objects.end(); ++it) objects_.add(it.key().path(), it.value());
    }
    review();
    if (!adapter_.isEmpty()) return;
    goAway(adapterName_.empty() ? "there is no Bluetooth controller"
                                : "there is no controller " + adapterName_);
}

const QVariantMap* PhoneRadio::adapterProperties() const {
    return objects_.properties(adapter_, Bluez::adapter);
}

std::string PhoneRadio::address() const {
    const auto* properties = adapterProperties();
    return properties ? properties->value("Address").toString().toStdString() : std::string();
}

PhoneRadio::Presence PhoneRadio::presence() const {
    auto result = registered_;
    const auto adapter = readAdapter(objects_, adapter_);
    result.isPowered = adapter && adapter->isPowered;
    return result;
}

/// Whether the controller has come or gone.
void PhoneRadio::review() {
    if (!adapter_.isEmpty() && !adapterProperties()) return goAway(adapterName_ + " is gone");
    if (!adapter_.isEmpty()) return reviewHosts();
    std::vector<std::string> names;
    for (const auto& path : objects_.pathsWith(Bluez::adapter)) names.push_back(lastPart(path));
    const auto chosen = chooseAdapter(names, adapterName_);
    if (!chosen) return;
    adapterName_ = *chosen;
    adapter_ = QString(Bluez::managerPath) + "/" + QString::fromStdString(*chosen);
    arrive();
}

void PhoneRadio::arrive() {
    agent_.adapter = adapter_;
    if (!wasPowered_) wasPowered_ = presence().isPowered;
    onFound();
    calls_.add([this] { return callsToArrive(); },
               [this](const std::optional<Mistake>& mistake) {
                   if (mistake) return onAway(mistake->text);
                   onReady();
                   reviewHosts();
               });
}

void PhoneRadio::goAway(const std::string& why) {
    adapter_.clear();
    calls_.abandon();
    registered_ = {};
    isAgentRegistered_ = false;
    agent_.adapter.clear();
    agent_.withdraw();
    application_.forgetSubscriptions();
    for (const auto& event : hosts_.loseLinks()) onEvent(event);
    onAway(why);
}

void PhoneRadio::reviewHosts() {
    if (adapter_.isEmpty()) return;
    std::vector<Host> hosts;
    for (const auto& path : objects_.pathsWith(Bluez::device, adapter_)) {
        const auto device = readDevice(objects_, path);
        if (device) hosts.push_back({device->address, device->isConnected, device->isBonded});
    }
    bool isAnyNew = false;
    for (const auto& event : hosts_.review(hosts)) {
        onEvent(event);
        isAnyNew = isAnyNew || event.starts_with("connected");
    }
    if (!isAnyNew || !isAgentRegistered_) return;
    // Of several phones on one computer, the one that was connected last is the one that will be asked.
    const BluezCall request{
        Bluez::managerPath, Bluez::agentManager, "RequestDefaultAgent", {objectPath(PhoneAgent::path)}};
    calls_.add([request] { return Calls{request}; }, [](const auto&) {});
}

BluezCall PhoneRadio::callToPower(bool isOn) {
    return {adapter_,
            Bluez::properties,
            "Set",
            {QString(Bluez::adapter), QString("Powered"), QVariant::fromValue(QDBusVariant(isOn))},
            // The signal that tells of it may come after the answer.
            [this, isOn] {
                objects_.change(adapter_, Bluez::adapter, {{"Powered", isOn}}, {});
            }};
}

BluezCall PhoneRadio::callToOffer(bool isOn) {
    QVariantList arguments{objectPath(GattApplication::path)};
    if (isOn) arguments << QVariantMap();
    return {adapter_, gattManager, isOn ? "RegisterApplication" : "UnregisterApplication", arguments,
            [this, isOn] {
                registered_.isServiceOffered = isOn;
                if (!isOn) application_.forgetSubscriptions();
            }};
}

BluezCall PhoneRadio::callToAdvertise(bool isOn) {
    QVariantList arguments{objectPath(Advertisement::path)};
    if (isOn) arguments << QVariantMap();
    return {adapter_, advertisingManager, isOn ? "RegisterAdvertisement" : "UnregisterAdvertisement",
            arguments, [this, isOn] { registered_.isAdvertising = isOn; }};
}

PhoneRadio::Calls PhoneRadio::callsToConform() {
    Calls calls;
    const auto now = presence();
    if (now.isServiceOffered != wished_.isServiceOffered) {
        calls.push_back(callToOffer(wished_.isServiceOffered));
    }
    if (now.isAdvertising != wished_.isAdvertising) calls.push_back(callToAdvertise(wished_.isAdvertising));
    if (now.isPowered != wished_.isPowered) {
        // Nothing can be registered while it is off.
        calls.insert(wished_.isPowered ? calls.begin() : calls.end(), callToPower(wished_.isPowered));
    }
    return calls;
}

PhoneRadio::Calls PhoneRadio::callsToArrive() {
    auto calls = callsToConform();
    const auto agent = objectPath(PhoneAgent::path);
    calls.push_back({Bluez::managerPath,
                     Bluez::agentManager,
                     "RegisterAgent",
                     {agent, QString(PhoneAgent::capability)},
                     [this] { isAgentRegistered_ = true; }});
    calls.push_back({Bluez::managerPath, Bluez::agentManager, "RequestDefaultAgent", {agent}});
    return calls;
}

PhoneRadio::Calls PhoneRadio::callsToDisconnect() {
    Calls calls;
    for (const auto& path : objects_.pathsWith(Bluez::device, adapter_)) {
        const auto device = readDevice(objects_, path);
        if (device && device->isConnected) calls.push_back({path, Bluez::device, "Disconnect", {}});
    }
    return calls;
}

PhoneRadio::Calls PhoneRadio::callsToLeave() {
    Calls calls;
    if (registered_.isAdvertising) calls.push_back(callToAdvertise(false));
    for (auto& call : callsToDisconnect()) calls.push_back(std::move(call));
    if (registered_.isServiceOffered) calls.push_back(callToOffer(false));
    if (isAgentRegistered_) {
        calls.push_back(
            {Bluez::managerPath, Bluez::agentManager, "UnregisterAgent", {objectPath(PhoneAgent::path)}});
    }
    if (wasPowered_ && presence().isPowered != *wasPowered_) calls.push_back(callToPower(*wasPowered_));
    return calls;
}

void PhoneRadio::set(Command::Switch change, Done done) {
    calls_.add(
        [this, change]() -> OrMistake<Calls> {
            if (adapter_.isEmpty()) return Mistake{"there is no controller at present"};
            using Subject = Command::Switch::Subject;
            const bool isApp = change.subject == Subject::app;
            if (isApp || change.subject == Subject::service) wished_.isServiceOffered = change.isOn;
            if (isApp || change.subject == Subject::advertising) wished_.isAdvertising = change.isOn;
            if (change.subject == Subject::power) wished_.isPowered = change.isOn;
            return callsToConform();
        },
        std::move(done));
}

void PhoneRadio::drop(Done done) {
    calls_.add(
        [this]() -> OrMistake<Calls> {
            auto calls = callsToDisconnect();
            if (calls.empty()) return Mistake{"nobody is connected"};
            return calls;
        },
        std::move(done));
}

void PhoneRadio::forget(Done done) {
    calls_.add(
        [this]() -> OrMistake<Calls> {
            Calls calls;
            for (const auto& path : objects_.pathsWith(Bluez::device, adapter_)) {
                calls.push_back(
                    {adapter_, Bluez::adapter, "RemoveDevice", {QVariant::fromValue(QDBusObjectPath(path))}});
            }
            return calls;
        },
        std::move(done));
}

void PhoneRadio::leave(Done done) {
    if (adapter_.isEmpty()) return done(std::nullopt);
    calls_.add([this] { return callsToLeave(); }, std::move(done));
}

}  // namespace orbinex::test_phone
