#include "link/bluez/bluez_central.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <algorithm>
#include <array>
#include <utility>

#include "link/bluez/bluez_names.h"
#include "link/nearby_device.h"

namespace orbinex {

namespace {

using ManagedObjects = QMap<QDBusObjectPath, BluezInterfaces>;

/// Properties that BlueZ sets when it hears a device.
constexpr std::array heardProperties{"RSSI", "ManufacturerData", "ServiceData", "AdvertisingFlags"};

bool isOfDevice(const QString& interface) {
    return interface == QLatin1String(Bluez::device) || interface == QLatin1String(Bluez::bearerLE) ||
           interface == QLatin1String(Bluez::bearerBREDR);
}

}  // namespace

BluezCentral::BluezCentral(const QDBusConnection& connection, Ports ports)
    : queue_(ports.queue),
      onlyAdapter_(ports.adapter),
      bus_(ports.queue, connection),
      devices_(objects_, ports.defaults),
      discovery_(bus_, ports.queue),
      connections_(bus_, ports.queue, devices_, sightings_,
                   {[this](const UUID& device) {
                        if (delegate_) delegate_->peripheralConnected(devices_.peripheral(device));
                    },
                    [this](const UUID& device, const BluetoothError* error) {
                        if (delegate_)
                            delegate_->peripheralFailedToConnect(devices_.peripheral(device), error);
                    },
                    [this](const UUID& device, const BluetoothError* error) {
                        gatt_.takePending(device);
                        gatt_.end(device);
                        if (delegate_) delegate_->peripheralDisconnected(devices_.peripheral(device), error);
                    },
                    [this](const UUID& device, const auto& done) { askWhetherConnected(device, done); },
                    [this](bool isConnecting) { discovery_.setPaused(isConnecting); }}),
      pairing_(bus_, ports.prompt),
      gatt_(bus_, ports.queue, objects_, devices_, connections_, pairing_, [this] { askForObjects(); }) {
    devices_.onBonded = [this](const UUID& device) { bonded(device); };
    bus_.onOwnerChanged = [this] { ownerChanged(); };
    // Some calls wait for the radio. Whether bluetoothd itself hangs shows in one that does not.
    bus_.onSilence = [this] {
        if (daemon_ == BluezDaemon::present) askForObjects();
    };
    bus_.onInterfacesAdded = [this](const auto&... arguments) { objectAdded(arguments...); };
    bus_.onInterfacesRemoved = [this](const auto&... arguments) { objectRemoved(arguments...); };
    bus_.onPropertiesChanged = [this](const auto&... arguments) { objectChanged(arguments...); };
    // Signals may have been missed during sleep.
    wake_ = ports.wake.didWake.subscribe([this] {
        sightings_.clear();
        if (bus_.isOwned()) askForObjects();
    });
}

BluezCentral::~BluezCentral() {
    stop();
}

void BluezCentral::start(Delegate& delegate) {
    delegate_ = &delegate;
    gatt_.setDelegate(&delegate);
    queue_.post(lifetime_.guard([this] {
        if (!delegate_) return;
        delegate_->bluetoothStateUpdated(state_);
        bus_.start();
    }));
}

void BluezCentral::stop() {
    delegate_ = nullptr;
    gatt_.setDelegate(nullptr);
    for (const auto& device : devices_.all()) gatt_.end(device);
    discovery_.end();
    connections_.endAll();
    bus_.stop();
    forgetEverything();
    objects_.clear();
    daemon_ = BluezDaemon::unasked;
    state_ = BluetoothState::unknown;
    adapter_.clear();
    patience_.cancel();
    retry_.cancel();
}

// bluetoothd and its adapters

void BluezCentral::ownerChanged() {
    objects_.clear();
    retry_.cancel();
    setDaemon(bus_.isOwned() ? BluezDaemon::unasked : BluezDaemon::absent);
    if (bus_.isOwned()) askForObjects();
}

void BluezCentral::askForObjects() {
    retry_.cancel();
    bus_.call("/", Bluez::objectManager, "GetManagedObjects", {}, BluezBus::ordinaryLimit,
              [this](const BluezBus::Reply& reply) { objectsTold(reply); });
}

void BluezCentral::objectsTold(const BluezBus::Reply& reply) {
    if (reply.error) {
        const bool isRefused = reply.error->name == QLatin1String(Bluez::accessDenied);
        return setDaemon(isRefused ? BluezDaemon::refusing : BluezDaemon::silent);
    }
    objects_.clear();
    if (reply.signature == QLatin1String("a{oa{sa{sv}}}")) {
        const auto objects = qdbus_cast<ManagedObjects>(reply.arguments[0].value<QDBusArgument>());
        for (auto it = objects.begin(); it != objects.end(); ++it) objects_.add(it.key().path(), it.value());
    }
    daemon_ = BluezDaemon::present;
    reviewState();
    if (!isPoweredOn()) return;
    for (const auto& path : objects_.pathsWith(Bluez::device, adapter_)) devices_.noticed(path);
    connections_.reviewAll();
    gatt_.objectsTold();
}

/// Not for all its properties: that the services are resolved may be answered before the signals that tell of
/// them.
void BluezCentral::askWhetherConnected(const UUID& device, const std::function<void()>& done) {
    const auto object = devices_.find(device);
    if (!object) return done();
    bus_.call(object->path, Bluez::properties, "Get", {Bluez::device, "Connected"}, BluezBus::ordinaryLimit,
              [this, path = object->path, done](const BluezBus::Reply& reply) {
                  if (!reply.error && reply.signature == QLatin1String("v")) {
                      objectChanged(path, Bluez::device,
                                    {{"Connected", reply.arguments[0].value<QDBusVariant>().variant()}}, {});
                  }
                  done();
              });
}

void BluezCentral::setDaemon(BluezDaemon daemon) {
    daemon_ = daemon;
    if (daemon == BluezDaemon::silent || daemon == BluezDaemon::refusing) {
        // It is asked until it answers; what was asked before is void.
        bus_.forgetCalls();
        retry_ = queue_.after(retryInterval, [this] { askForObjects(); });
    }
    reviewState();
}

/// What is to be reported: a bluetoothd or an adapter that is missing may be there in a moment.
BluetoothState BluezCentral::presentState(const BluezAdapter* adapter) {
    const auto state = bluetoothStateOf(daemon_, adapter);
    // A bluetoothd that has come back has not told anything yet.
    if (state == BluetoothState::unknown && state_ != state) return BluetoothState::resetting;
    if (state != BluetoothState::unsupported) {
        patience_.cancel();
        isOutOfPatience_ = false;
        return state;
    }
    if (isOutOfPatience_) return state;
    if (!patience_.isActive()) {
        patience_ = queue_.after(patience, [this] {
            isOutOfPatience_ = true;
            reviewState();
        });
    }
    return state_ == BluetoothState::unknown ? BluetoothState::unknown : BluetoothState::resetting;
}

void BluezCentral::reviewState() {
    auto adapters = readAdapters(objects_);
    if (!onlyAdapter_.isEmpty()) {
        std::erase_if(adapters, [this](const BluezAdapter& adapter) {
            return adapter.path.section(QLatin1Char('/'), -1) != onlyAdapter_;
        });
    }
    const auto path = chooseAdapter(adapters, adapter_);
    const auto adapter = std::ranges::find(adapters, path, &BluezAdapter::path);
    const auto state = presentState(adapter == adapters.end() ? nullptr : &*adapter);
    if (state == state_ && path == adapter_) return;
    // What was connected through one adapter is not through another.
    if (state == state_ && isPoweredOn()) enterState(BluetoothState::resetting, path);
    enterState(state, path);
}

void BluezCentral::enterState(BluetoothState state, const QString& adapter) {
    adapter_ = adapter;
    const bool isNews = std::exchange(state_, state) != state;
    forgetEverything();
    if (isPoweredOn()) {
        discovery_.useAdapter(adapter_);
        devices_.useAdapter(adapter_);
    }
    if (isNews && delegate_) delegate_->bluetoothStateUpdated(state_);
}

void BluezCentral::forgetEverything() {
    scannedService_.reset();
    gatt_.clear();
    connections_.clear();
    discovery_.useAdapter({});
    devices_.useAdapter({});
    sightings_.clear();
}

// Its objects

void BluezCentral::objectAdded(const QString& path, const BluezInterfaces& interfaces) {
    objects_.add(path, interfaces);
    if (interfaces.contains(QLatin1String(Bluez::adapter))) reviewState();
    const auto device = devices_.noticed(path);
    if (device && interfaces[QLatin1String(Bluez::device)].contains(QStringLiteral("RSSI"))) heard(*device);
    if (const auto owner = devices_.identifierAt(path)) reviewDevice(*owner);
}

void BluezCentral::objectRemoved(const QString& path, const QStringList& interfaces) {
    const auto device = devices_.identifierAt(path);
    objects_.remove(path, interfaces);
    if (interfaces.contains(QLatin1String(Bluez::adapter))) reviewState();
    if (interfaces.contains(QLatin1String(Bluez::device))) devices_.removed(path);
    if (device) reviewDevice(*device);
}

void BluezCentral::objectChanged(const QString& path, const QString& interface, const QVariantMap& changed,
                                 const QStringList& invalidated) {
    if (interface == QLatin1String(Bluez::characteristic)) gatt_.valueChanged(path, changed);
    objects_.change(path, interface, changed, invalidated);
    if (interface == QLatin1String(Bluez::adapter)) {
        reviewState();
        const auto discovering = changed.constFind(QStringLiteral("Discovering"));
        if (path == adapter_ && discovering != changed.constEnd() && *discovering == QVariant(false)) {
            discovery_.ended();
        }
    } else if (isOfDevice(interface)) {
        const auto device = devices_.noticed(path);
        if (!device) return;
        const bool isHeard = std::ranges::any_of(
            heardProperties, [&](const char* name) { return changed.contains(QLatin1String(name)); });
        // First that its connection is gone, which the same signal may tell, and then that it can be had
        // again.
        reviewDevice(*device);
        if (!isHeard) return;
        heard(*device);
        reviewDevice(*device);
    }
}

/// A bond that nobody was asked about is taken back, and the connection with it.
void BluezCentral::bonded(const UUID& device) {
    const auto object = devices_.find(device);
    if (!object || !connections_.noteBond(device)) return;
    bus_.call(adapter_, Bluez::adapter, "RemoveDevice", {QVariant::fromValue(QDBusObjectPath(object->path))},
              BluezBus::ordinaryLimit, [](const BluezBus::Reply&) {});
}

void BluezCentral::reviewDevice(const UUID& device) {
    connections_.review(device);
    gatt_.review(device);
}

void BluezCentral::heard(const UUID& device) {
    const auto object = devices_.find(device);
    if (!scannedService_ || !object) return;
    const auto name = devices_.advertisedName(device);
    // BlueZ does not add a service again that a connection has shown to be missing.
    if (!object->offers(*scannedService_) && !parseAdvertisedName(name.value_or(std::string()))) return;
    const bool isToBeReported = sightings_.heard(device, queue_.uptime());
    if (!isToBeReported || connections_.isLinked(device) || !delegate_) return;
    const Advertisement advertisement{{device, object->name}, name, object->rssi.value_or(127)};
    delegate_->peripheralDiscovered(advertisement);
}

// What the link asks for

void BluezCentral::startScan(const UUID& service) {
    if (!isPoweredOn()) return;
    scannedService_ = service;
    sightings_.reportAnew();
    discovery_.want(service);
    // Another program's discovery may have heard them.
    queue_.post(lifetime_.guard([this] {
        for (const auto& device : devices_.all()) {
            const auto object = devices_.find(device);
            if (!object || !object->rssi) continue;
            heard(device);
            reviewDevice(device);
        }
    }));
}

void BluezCentral::stopScan() {
    scannedService_.reset();
    if (isPoweredOn()) discovery_.want(std::nullopt);
}

std::vector<Peripheral> BluezCentral::retrievePeripherals(std::span<const UUID> identifiers) {
    std::vector<Peripheral> result;
    for (const auto& id : identifiers) {
        if (isPoweredOn() && devices_.find(id)) result.push_back(devices_.peripheral(id));
    }
    return result;
}

std::vector<Peripheral> BluezCentral::retrieveConnectedPeripherals(const UUID& service) {
    std::vector<Peripheral> result;
    for (const auto& id : devices_.all()) {
        const auto object = devices_.find(id);
        if (object && connections_.isLinked(id) && object->offers(service))
            result.push_back({id, object->name});
    }
    return result;
}

void BluezCentral::connect(const Peripheral& peripheral, Initiative initiative) {
    if (isPoweredOn()) connections_.connect(peripheral, initiative);
}

void BluezCentral::cancelConnection(const UUID& peripheral) {
    if (!isPoweredOn()) return;
    gatt_.end(peripheral);
    connections_.cancel(peripheral);
}

bool BluezCentral::isConnected(const UUID& peripheral) const {
    return connections_.isConnected(peripheral);
}

void BluezCentral::discoverServices(const UUID& peripheral, std::span<const UUID> services) {
    if (isConnected(peripheral)) gatt_.discoverServices(peripheral, services);
}

void BluezCentral::discoverCharacteristics(const UUID& peripheral, const UUID& service,
                                           std::span<const UUID> characteristics) {
    if (isConnected(peripheral)) gatt_.discoverCharacteristics(peripheral, service, characteristics);
}

void BluezCentral::readValue(const UUID& peripheral, const UUID& characteristic) {
    if (isConnected(peripheral)) gatt_.readValue(peripheral, characteristic);
}

void BluezCentral::setNotify(const UUID& peripheral, const UUID& characteristic, bool enabled) {
    if (isConnected(peripheral)) gatt_.setNotify(peripheral, characteristic, enabled);
}

void BluezCentral::writeValue(const UUID& peripheral, const UUID& characteristic, ByteView value,
                              WriteType type) {
    if (isConnected(peripheral)) gatt_.writeValue(peripheral, characteristic, value, type);
}

}  // namespace orbinex
