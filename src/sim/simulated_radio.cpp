#include "sim/simulated_radio.h"

#include <algorithm>
#include <utility>

#include "protocol/gatt.h"

namespace orbinex {

namespace {

using namespace std::chrono_literals;

constexpr auto firstSight = 30ms;
constexpr auto advertisingInterval = 1s;
constexpr auto cancelTime = 20ms;

const BluetoothError* pointer(const std::optional<BluetoothError>& error) {
    return error ? &*error : nullptr;
}

}  // namespace

SimulatedRadio::SimulatedRadio(MainQueue& queue, BluetoothState state) : queue_(queue), state_(state) {}
SimulatedRadio::~SimulatedRadio() = default;

SimulatedPhone& SimulatedRadio::addPhone(const UUID& identifier, DeviceInfo info) {
    return phones_.emplace_back(*this, identifier, std::move(info));
}

SimulatedPhone* SimulatedRadio::phoneWith(const UUID& identifier) {
    const auto found = std::ranges::find(phones_, identifier, &SimulatedPhone::identifier);
    return found == phones_.end() ? nullptr : &*found;
}

Peripheral SimulatedRadio::peripheralFor(const UUID& identifier) {
    if (const auto* phone = phoneWith(identifier)) return {identifier, phone->info.name};
    const auto seen = seenNames_.find(identifier);
    return {identifier, seen == seenNames_.end() ? std::string() : seen->second};
}

// Reports

void SimulatedRadio::report(const UUID& peripheral, const Report& report) {
    queue_.post(lifetime_.guard([this, peripheral, report] {
        if (delegate_ && state_ == BluetoothState::poweredOn) report(*delegate_, peripheralFor(peripheral));
    }));
}

void SimulatedRadio::schedule(Link& link, std::chrono::nanoseconds delay, MainQueue::Job job) {
    std::erase_if(link.steps, [](const Timer& timer) { return !timer.isActive(); });
    link.steps.push_back(queue_.after(delay, std::move(job)));
}

void SimulatedRadio::answer(const UUID& peripheral, const PhoneStep& step, Report report) {
    auto* link = connectedLink(peripheral);
    if (!link || !step.isAnswered) return;
    schedule(*link, step.delay, [this, peripheral, report = std::move(report)] {
        if (delegate_) report(*delegate_, peripheralFor(peripheral));
    });
}

SimulatedRadio::Link* SimulatedRadio::connectedLink(const UUID& identifier) {
    const auto found = links_.find(identifier);
    if (found == links_.end() || found->second.state != LinkState::connected) return nullptr;
    return &found->second;
}

bool SimulatedRadio::isConnected(const UUID& peripheral) const {
    const auto found = links_.find(peripheral);
    return found != links_.end() && found->second.state == LinkState::connected;
}

std::size_t SimulatedRadio::connectedCount() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        links_, [](const auto& entry) { return entry.second.state == LinkState::connected; }));
}

std::size_t SimulatedRadio::requestCount() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        links_, [](const auto& entry) { return entry.second.state == LinkState::requested; }));
}

// Power

void SimulatedRadio::start(Delegate& delegate) {
    delegate_ = &delegate;
    queue_.post(lifetime_.guard([this] {
        if (delegate_) delegate_->bluetoothStateUpdated(state_);
    }));
}

void SimulatedRadio::stop() {
    delegate_ = nullptr;
    stopScan();
    links_.clear();
}

void SimulatedRadio::setState(BluetoothState state) {
    state_ = state;
    if (state != BluetoothState::poweredOn) {
        stopScan();
        links_.clear();
    }
    queue_.post(lifetime_.guard([this, state] {
        if (delegate_) delegate_->bluetoothStateUpdated(state);
    }));
}

// Scanning

void SimulatedRadio::startScan(const UUID& service) {
    if (state_ != BluetoothState::poweredOn || service != OrbinexProtocol::serviceUUID) return;
    firstSightTimer_ = queue_.after(firstSight, [this] { advertise(); });
    scanTimer_ = queue_.every(advertisingInterval, [this] { advertise(); });
}

void SimulatedRadio::stopScan() {
    firstSightTimer_.cancel();
    scanTimer_.cancel();
}

void SimulatedRadio::advertise() {
    for (const auto& phone : phones_) {
        if (!phone.isAdvertising_ || !phone.isInRange_ || isConnected(phone.identifier_)) continue;
        seenNames_[phone.identifier_] = phone.info.name;
        const Advertisement advertisement{
            {phone.identifier_, phone.info.name}, phone.advertisedName, phone.rssi};
        queue_.post(lifetime_.guard([this, advertisement] {
            if (delegate_ && isScanning()) delegate_->peripheralDiscovered(advertisement);
        }));
    }
}

std::vector<Peripheral> SimulatedRadio::retrievePeripherals(std::span<const UUID> identifiers) {
    std::vector<Peripheral> result;
    if (state_ != BluetoothState::poweredOn) return result;
    for (const auto& id : identifiers) {
        if (phoneWith(id) || seenNames_.contains(id)) result.push_back(peripheralFor(id));
    }
    return result;
}

std::vector<Peripheral> SimulatedRadio::retrieveConnectedPeripherals(const UUID&) {
    std::vector<Peripheral> result;
    if (state_ != BluetoothState::poweredOn) return result;
    for (const auto& phone : phones_) {
        if (phone.isConnectedElsewhere && phone.isInRange_)
            result.push_back(peripheralFor(phone.identifier_));
    }
    return result;
}

// Connections

void SimulatedRadio::connect(const Peripheral& peripheral, Initiative) {
    if (state_ != BluetoothState::poweredOn) return;
    const UUID id = peripheral.identifier;
    auto& link = links_[id];
    switch (link.state) {
        case LinkState::requested: break;
        case LinkState::cancelling: link.isWantedAgain = true; break;
        case LinkState::connected:
            report(id, [](Delegate& delegate, const Peripheral& p) { delegate.peripheralConnected(p); });
            break;
        case LinkState::idle:
            link.state = LinkState::requested;
            tryRequest(id);
            break;
    }
}

void SimulatedRadio::tryRequest(const UUID& peripheral) {
    auto& link = links_[peripheral];
    const auto* phone = phoneWith(peripheral);
    if (link.state != LinkState::requested || !phone || !phone->isInRange_ || !phone->isAdvertising_) return;
    const PhoneStep& step = phone->connectStep;
    link.steps.clear();
    if (!step.isAnswered) return;
    schedule(link, step.delay, [this, peripheral, error = step.error] {
        auto& request = links_[peripheral];
        request.state = error ? LinkState::idle : LinkState::connected;
        request.notifying.clear();
        if (!delegate_) return;
        if (error) {
            delegate_->peripheralFailedToConnect(peripheralFor(peripheral), pointer(error));
        } else {
            delegate_->peripheralConnected(peripheralFor(peripheral));
        }
    });
}

void SimulatedRadio::cancelConnection(const UUID& peripheral) {
    const auto found = links_.find(peripheral);
    if (found == links_.end()) return;
    auto& link = found->second;
    if (link.state == LinkState::connected) {
        link.state = LinkState::cancelling;
        link.isWantedAgain = false;
        link.notifying.clear();
        link.steps.clear();
        schedule(link, cancelTime, [this, peripheral] { endLink(peripheral, std::nullopt); });
    } else if (link.state == LinkState::requested) {
        link.state = LinkState::idle;
        link.steps.clear();
        if (reportsCancelledRequests_) {
            report(peripheral, [](Delegate& delegate, const Peripheral& p) {
                delegate.peripheralDisconnected(p, nullptr);
            });
        }
    } else if (link.state == LinkState::cancelling) {
        link.isWantedAgain = false;
    }
}

void SimulatedRadio::endLink(const UUID& peripheral, const std::optional<BluetoothError>& error) {
    auto& link = links_[peripheral];
    const bool isWantedAgain = link.state == LinkState::cancelling && link.isWantedAgain;
    // The steps go last: this may be running in one of them.
    const auto steps = std::exchange(link, Link{}).steps;
    if (isWantedAgain) link.state = LinkState::requested;
    report(peripheral, [error](Delegate& delegate, const Peripheral& p) {
        delegate.peripheralDisconnected(p, pointer(error));
    });
    if (isWantedAgain) tryRequest(peripheral);
}

void SimulatedRadio::reconsider(SimulatedPhone& phone) {
    tryRequest(phone.identifier_);
}

// Attributes

void SimulatedRadio::discoverServices(const UUID& peripheral, std::span<const UUID>) {
    const auto* phone = phoneWith(peripheral);
    if (!phone) return;
    answer(peripheral, phone->servicesStep,
           [error = phone->servicesStep.error, hasService = phone->hasService](Delegate& delegate,
                                                                               const Peripheral& p) {
               std::vector<UUID> services;
               if (hasService) services.push_back(OrbinexProtocol::serviceUUID);
               delegate.servicesDiscovered(p, services, pointer(error));
           });
}

void SimulatedRadio::discoverCharacteristics(const UUID& peripheral, const UUID& service,
                                             std::span<const UUID> characteristics) {
    const auto* phone = phoneWith(peripheral);
    if (!phone) return;
    std::vector<Characteristic> found;
    for (const auto& uuid : characteristics) {
        const bool isControl = uuid == OrbinexProtocol::controlCharacteristicUUID;
        if (!phone->missingCharacteristics.contains(uuid)) {
            found.push_back({uuid, isControl && phone->canWriteWithoutResponse});
        }
    }
    answer(
        peripheral, phone->characteristicsStep,
        [error = phone->characteristicsStep.error, service, found](Delegate& delegate, const Peripheral& p) {
            delegate.characteristicsDiscovered(p, service, found, pointer(error));
        });
}

void SimulatedRadio::readValue(const UUID& peripheral, const UUID& characteristic) {
    const auto* phone = phoneWith(peripheral);
    if (!phone || characteristic != OrbinexProtocol::infoCharacteristicUUID) return;
    answer(
        peripheral, phone->infoStep,
        [error = phone->infoStep.error, characteristic,
         value = phone->infoValue.value_or(phone->info.encode())](Delegate& delegate, const Peripheral& p) {
            delegate.valueUpdated(p, characteristic, error ? ByteView{} : ByteView(value), pointer(error));
        });
}

void SimulatedRadio::setNotify(const UUID& peripheral, const UUID& characteristic, bool enabled) {
    const auto* phone = phoneWith(peripheral);
    if (!phone) return;
    answer(peripheral, phone->subscribeStep,
           [this, error = phone->subscribeStep.error, characteristic, enabled](Delegate& delegate,
                                                                               const Peripheral& p) {
               auto* link = connectedLink(p.identifier);
               if (link && !error && enabled) link->notifying.insert(characteristic);
               if (link && !error && !enabled) link->notifying.erase(characteristic);
               delegate.notificationStateUpdated(p, characteristic, enabled && !error, pointer(error));
           });
}

void SimulatedRadio::writeValue(const UUID& peripheral, const UUID& characteristic, ByteView value,
                                WriteType type) {
    auto* phone = phoneWith(peripheral);
    if (!phone || !connectedLink(peripheral) || characteristic != OrbinexProtocol::controlCharacteristicUUID)
        return;
    if (type == WriteType::withoutResponse && !phone->canWriteWithoutResponse) return;
    if (auto message = ControlMessage::decode(value)) {
        phone->received.push_back(*message);
        if (phone->onReceived) phone->onReceived(*message);
    }
}

void SimulatedRadio::deliver(const UUID& peripheral, const UUID& characteristic, ByteView value) {
    queue_.post(
        lifetime_.guard([this, peripheral, characteristic, bytes = Bytes(value.begin(), value.end())] {
            if (delegate_ && isConnected(peripheral)) {
                delegate_->valueUpdated(peripheralFor(peripheral), characteristic, bytes, nullptr);
            }
        }));
}

}  // namespace orbinex
