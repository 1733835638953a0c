// Connect requests, by the user and by themselves, and how they end.

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"
#include "link/central_ble_manager.h"
#include "link/link_texts.h"
#include "link/pairing_error.h"
#include "protocol/gatt.h"

namespace orbinex {

void CentralBLEManager::connectNearbyDevice(const UUID& id) {
    const auto* nearby = findNearby(*nearbyDevices, id);
    const auto known = peripherals_.find(id);
    if (!nearby || known == peripherals_.end()) return;
    suppressions_.clear(id, nearby->trustedDeviceID);
    connectPeripheral(Peripheral(known->second), std::string(nearby->name));
}

void CentralBLEManager::connectPeripheral(const Peripheral& peripheral, const std::string& name) {
    resetRetryState();
    suppressions_.clearWithoutService(peripheral.identifier);
    if (session_) {
        if (hasSessionWith(peripheral.identifier)) return;
        writeGoodbye();
        suppressSession(SuppressionReason::user);
        endSession(true, std::nullopt);
    }
    if (attempt_ && !hasAttemptFor(peripheral.identifier)) abandonAttempt();
    beginConnect(peripheral, Intent::user, name);
}

void CentralBLEManager::connectTrustedDevice(const TrustedDevice& device) {
    suppressions_.clear(device.peripheralIdentifier, device.id);
    // Without Bluetooth there is nothing to look for; the line says so, and the iPhone is connected by itself
    // later.
    if (!isPoweredOn()) return;

    const auto nearby = std::ranges::find_if(*nearbyDevices, [&](const NearbyDevice& entry) {
        return entry.trustedDeviceID == device.id && peripherals_.contains(entry.id);
    });
    if (nearby != nearbyDevices->end()) {
        connectPeripheral(Peripheral(peripherals_.at(nearby->id)), device.name);
        return;
    }
    if (device.peripheralIdentifier) {
        const auto retrieved = ports_.central.retrievePeripherals(std::array{*device.peripheralIdentifier});
        if (!retrieved.empty()) {
            connectPeripheral(retrieved.front(), device.name);
            return;
        }
    }
    statusMessage = LinkText::lookingFor(device.name);
    if (session_) {
        startScanning(rescanDuration);
        lookedFor_ = device.id;
    } else {
        startScanning();
    }
    alert = LinkText::notNearbyAlert(device.name);
}

void CentralBLEManager::beginConnect(const Peripheral& peripheral, Intent intent, const std::string& name) {
    if (!isPoweredOn()) return;
    const UUID id = peripheral.identifier;
    peripherals_.insert_or_assign(id, peripheral);
    cutFarewell(id);
    forgotten_.clear();
    attempt_ = ConnectionAttempt{id, intent};
    pendingConnects_.erase(id);
    intentionalDisconnects_.erase(id);
    const auto timeout = intent == Intent::user ? userConnectTimeout : automaticConnectTimeout;
    watchdog_ = ports_.queue.after(timeout, [this, id, intent, name] { connectTimedOut(id, intent, name); });
    ports_.central.connect({id, name}, intent == Intent::user ? Initiative::user : Initiative::program);
    phase = Phase::connecting;
    activeDevice = ActiveDevice{id, trustedIDForPeripheral(id), name};
    statusMessage = LinkText::connecting(name);
}

void CentralBLEManager::connectTimedOut(const UUID& peripheral, Intent intent, const std::string& name) {
    if (!hasAttemptFor(peripheral)) return;
    attempt_.reset();
    dropPeripheral(peripheral);
    activeDevice = std::nullopt;
    if (intent == Intent::user) {
        alert = LinkText::unreachableAlert(name);
        phase = idlePhase();
        resumeDiscovery();
    } else {
        scheduleRetry();
    }
}

/// Gives up the connect request under way, without a word.
void CentralBLEManager::abandonAttempt() {
    const UUID id = attempt_->id;
    attempt_.reset();
    watchdog_.cancel();
    dropPeripheral(id);
    activeDevice = std::nullopt;
}

void CentralBLEManager::cancelConnectionAttempt() {
    // A connected session is no attempt: a click that comes late must not cut its input off.
    if (*phase == Phase::connected) return;
    watchdog_.cancel();
    if (attempt_) {
        const UUID id = attempt_->id;
        abandonAttempt();
        suppress(id, std::nullopt, SuppressionReason::user);
        statusMessage = LinkText::cancelled();
    }
    if (session_) {
        suppressSession(SuppressionReason::user);
        endSession(true, LinkText::cancelled());
    }
    phase = idlePhase();
    startScanning();
}

/// Whether the iPhone being connected has not told yet who it is, and nothing tells it apart from this one.
bool CentralBLEManager::mayTurnOutToBe(const TrustedDevice& device) const {
    const auto& active = *activeDevice;
    if (!active || active->deviceID) return false;
    const auto* nearby = findNearby(*nearbyDevices, active->peripheralID);
    return !nearby || !nearby->token || lowercased(*nearby->token) == lowercased(device.token);
}

void CentralBLEManager::forgetDevice(const TrustedDevice& device) {
    if (isActive(device) || mayTurnOutToBe(device)) {
        const UUID peripheral = activeDevice.get()->peripheralID;
        // Not connected yet is not safe from being trusted again.
        if (attempt_) cancelConnectionAttempt();
        disconnect();
        suppressions_.removePeripheral(peripheral);
    }
    // One that was taken for another may still say that it is this one.
    forgotten_.insert(device.id);
    if (lookedFor_ == device.id) stopLooking();
    if (const auto& peripheral = device.peripheralIdentifier) {
        if (pendingConnects_.erase(*peripheral) > 0 && peripherals_.contains(*peripheral)) {
            dropPeripheral(*peripheral);
        }
        suppressions_.removePeripheral(*peripheral);
    }
    suppressions_.removeDevice(device.id);
    trustStore_.remove(device.id);
    relinkNearbyDevices();
}

void CentralBLEManager::peripheralConnected(const Peripheral& peripheral) {
    const UUID id = peripheral.identifier;
    if (session_ && !hasSessionWith(id)) {
        pendingConnects_.erase(id);
        dropPeripheral(id);
        return;
    }
    if (session_) return;  // reported again
    if (hasAttemptFor(id)) {
        adoptConnection(peripheral, attempt_->intent);
    } else if (pendingConnects_.contains(id)) {
        if (attempt_) abandonAttempt();
        adoptConnection(peripheral, Intent::pending);
    } else {
        dropPeripheral(id);
    }
}

void CentralBLEManager::adoptConnection(const Peripheral& peripheral, Intent intent) {
    const UUID id = peripheral.identifier;
    attempt_.reset();
    pendingConnects_.erase(id);
    intentionalDisconnects_.erase(id);
    cancelPendingConnects();
    // What was to be tried again has come; should it fail, that schedules anew and says so.
    retryTimer_.cancel();
    session_ = Session{peripheral, intent, {}, {}, {}, {}, {}, {}};

    const auto record = trustStore_.deviceForPeripheral(id);
    const auto* nearby = findNearby(*nearbyDevices, id);
    const std::string name = activeDevice.get() ? activeDevice.get()->name
                             : record           ? record->name
                             : nearby           ? nearby->name
                                                : LinkText::someIPhone;
    watchdog_ = ports_.queue.after(handshakeTimeout, [this, id, name] { handshakeTimedOut(id, name); });
    ports_.central.discoverServices(id, std::array{OrbinexProtocol::serviceUUID});
    activeDevice = ActiveDevice{id, record ? std::optional(record->id) : std::nullopt, name};
    phase = Phase::securing;
    statusMessage = LinkText::securing(name);
    stopScanning();
}

void CentralBLEManager::peripheralFailedToConnect(const Peripheral& peripheral, const BluetoothError* error) {
    const UUID id = peripheral.identifier;
    intentionalDisconnects_.erase(id);
    if (pendingConnects_.erase(id) > 0) {
        pendingConnectFailed(id, error);
    } else if (hasAttemptFor(id)) {
        attemptFailed(id, error);
    }
}

void CentralBLEManager::pendingConnectFailed(const UUID& peripheral, const BluetoothError* error) {
    if (isPeerRemovedPairing(error)) {
        const auto record = trustStore_.deviceForPeripheral(peripheral);
        suppress(peripheral, record ? std::optional(record->id) : std::nullopt,
                 SuppressionReason::pairingFailed);
        alert = LinkText::pairingAlert(record ? record->name : LinkText::yourIPhone, error);
    } else if (!session_ && !attempt_) {
        // An attempt under way shows its own line, and its end makes this request again.
        scheduleRetry();
    }
}

void CentralBLEManager::attemptFailed(const UUID& peripheral, const BluetoothError* error) {
    const Intent intent = attempt_->intent;
    const std::string name = activeName(LinkText::yourIPhone);
    attempt_.reset();
    watchdog_.cancel();
    activeDevice = std::nullopt;
    if (isPairingError(error)) {
        suppress(peripheral, std::nullopt, SuppressionReason::pairingFailed);
        alert = LinkText::pairingAlert(name, error);
        resumeDiscovery();
    } else if (intent != Intent::user) {
        scheduleRetry();
    } else {
        alert = LinkText::connectFailedAlert(name, error);
        resumeDiscovery();
    }
}

void CentralBLEManager::peripheralDisconnected(const Peripheral& peripheral, const BluetoothError* error) {
    const UUID id = peripheral.identifier;
    pendingConnects_.erase(id);
    goodbyeTimers_.erase(id);
    const bool intentional = intentionalDisconnects_.erase(id) > 0;
    if (!intentional && hasSessionWith(id)) {
        sessionDropped(error);
        return;
    }
    if (hasSessionWith(id)) endSession(false, std::nullopt);
    if (!session_ && !attempt_ && !isRetryScheduled()) resumeDiscovery();
}

void CentralBLEManager::sessionDropped(const BluetoothError* error) {
    const std::string name = activeName(LinkText::someIPhone);
    if (isPairingError(error)) {
        handlePairingFailure(error);
    } else if (*phase == Phase::connected) {
        endSession(false, LinkText::connectionLost(name));
        resumeDiscovery();
    } else if (session_->intent != Intent::user) {
        endSession(false, std::nullopt);
        scheduleRetry();
    } else {
        // The user's own attempt that breaks off in the handshake is a pairing that was refused.
        const UUID peripheral = session_->peripheral.identifier;
        const auto device =
            session_->deviceInfo ? std::optional(session_->deviceInfo->deviceID) : std::nullopt;
        endSession(false, std::nullopt);
        suppress(peripheral, device, SuppressionReason::pairingFailed);
        alert = LinkText::pairingAlert(name, error);
        resumeDiscovery();
    }
}

}  // namespace orbinex
