// Scanning, the nearby list, and what is connected by itself.

#include <algorithm>
#include <utility>

#include "link/central_ble_manager.h"
#include "link/link_texts.h"
#include "protocol/gatt.h"

namespace orbinex {

void CentralBLEManager::resumeDiscovery() {
    if (!isPoweredOn() || session_) return;
    if (!attempt_) {
        phase = Phase::searching;
        statusMessage = LinkText::searching(!trustStore_.devices->empty());
    }
    startScanning();
    if (autoConnectEnabled_ && !isRetryScheduled()) queueKnownPeripherals();
}

void CentralBLEManager::queueKnownPeripherals() {
    std::vector<UUID> known;
    for (const auto& device : *trustStore_.devices) {
        const auto& peripheral = device.peripheralIdentifier;
        if (peripheral && mayAutoConnect(*peripheral, trustedIDForPeripheral(*peripheral))) {
            known.push_back(*peripheral);
        }
    }
    for (const auto& peripheral : ports_.central.retrievePeripherals(known)) queuePendingConnect(peripheral);

    // Connected to this computer already, perhaps on another program's behalf.
    for (const auto& peripheral : ports_.central.retrieveConnectedPeripherals(OrbinexProtocol::serviceUUID)) {
        const auto device = trustedIDForPeripheral(peripheral.identifier);
        if (device && mayAutoConnect(peripheral.identifier, device)) queuePendingConnect(peripheral);
    }
}

bool CentralBLEManager::mayAutoConnect(const UUID& peripheral, const std::optional<UUID>& device) const {
    return !suppressions_.isSuppressed(peripheral, device) && !suppressions_.isWithoutService(peripheral);
}

void CentralBLEManager::startScanning(std::optional<std::chrono::seconds> duration) {
    if (!isPoweredOn()) return;
    scanStopTimer_.cancel();
    if (!ports_.central.isScanning()) ports_.central.startScan(OrbinexProtocol::serviceUUID);
    isScanning = true;
    if (!duration) return;
    scanStopTimer_ = ports_.queue.after(*duration, [this] {
        // Without a session the search goes on.
        if (session_) stopScanning();
    });
}

void CentralBLEManager::stopScanning() {
    scanStopTimer_.cancel();
    stopLooking();
    if (isPoweredOn() && ports_.central.isScanning()) ports_.central.stopScan();
    isScanning = false;
}

/// What the line says is the session again.
void CentralBLEManager::stopLooking() {
    if (!std::exchange(lookedFor_, std::nullopt) || !session_) return;
    const std::string name = activeName(LinkText::someIPhone);
    statusMessage = *phase == Phase::connected ? LinkText::connected(name) : LinkText::securing(name);
}

void CentralBLEManager::rescan() {
    resetRetryState();
    suppressions_.clearAllWithoutService();
    NearbyList kept = *nearbyDevices;
    const auto& active = *activeDevice;
    std::erase_if(kept,
                  [&](const NearbyDevice& device) { return !active || device.id != active->peripheralID; });
    nearbyDevices = std::move(kept);
    if (session_) {
        startScanning(rescanDuration);
    } else {
        resumeDiscovery();
    }
}

void CentralBLEManager::peripheralDiscovered(const Advertisement& advertisement) {
    const auto& peripheral = advertisement.peripheral;
    const UUID id = peripheral.identifier;
    peripherals_.insert_or_assign(id, peripheral);

    const auto now = ports_.queue.uptime();
    NearbyList list = *nearbyDevices;
    NearbyDevice device = heard(findNearby(list, id), id, advertisement.localName.value_or(peripheral.name),
                                advertisement.rssi, now);
    const auto record = trustedMatch(id, device.token);
    const auto recordID = record ? std::optional(record->id) : std::nullopt;
    device.trustedDeviceID = recordID;
    insertNearby(list, std::move(device));
    nearbyDevices = std::move(list);

    suppressions_.expireRemote(id, recordID, now);
    if (record && lookedFor_ == recordID) {
        connectPeripheral(peripheral, record->name);
        return;
    }
    if (autoConnectEnabled_ && record && !session_ && !attempt_ && !isRetryScheduled() &&
        mayAutoConnect(id, recordID)) {
        beginConnect(peripheral, Intent::automatic, record->name);
    }
}

std::optional<TrustedDevice> CentralBLEManager::trustedMatch(const UUID& peripheral,
                                                             const std::optional<std::string>& token) const {
    auto record = trustStore_.deviceForPeripheral(peripheral);
    if (!record && token) record = trustStore_.deviceForToken(*token);
    return record;
}

void CentralBLEManager::pruneNearby() {
    const auto& active = *activeDevice;
    NearbyList kept = prunedNearby(*nearbyDevices, ports_.queue.uptime(),
                                   active ? std::optional(active->peripheralID) : std::nullopt);
    if (kept.size() != nearbyDevices->size()) nearbyDevices = std::move(kept);
}

void CentralBLEManager::relinkNearbyDevices() {
    NearbyList list = *nearbyDevices;
    for (auto& device : list) {
        const auto record = trustedMatch(device.id, device.token);
        device.trustedDeviceID = record ? std::optional(record->id) : std::nullopt;
    }
    nearbyDevices = std::move(list);
}

bool CentralBLEManager::isNearby(const UUID& trustedDeviceID) const {
    return std::ranges::any_of(*nearbyDevices, [&](const NearbyDevice& device) {
        return device.trustedDeviceID == trustedDeviceID;
    });
}

}  // namespace orbinex
