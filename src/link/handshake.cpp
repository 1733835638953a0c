// From the link to the connected state: services, characteristics, who the iPhone is, subscriptions.

#include <algorithm>
#include <array>
#include <utility>

#include "link/central_ble_manager.h"
#include "link/link_texts.h"
#include "link/pairing_error.h"
#include "protocol/control_message.h"
#include "protocol/gatt.h"

namespace orbinex {

namespace {

/// The session's place for a characteristic, or null for one that is not ours.
std::optional<Characteristic>* slotFor(Session& session, const UUID& uuid) {
    if (uuid == OrbinexProtocol::mouseCharacteristicUUID) return &session.mouse;
    if (uuid == OrbinexProtocol::keyboardCharacteristicUUID) return &session.keyboard;
    if (uuid == OrbinexProtocol::infoCharacteristicUUID) return &session.info;
    if (uuid == OrbinexProtocol::controlCharacteristicUUID) return &session.control;
    return nullptr;
}

constexpr std::array subscribed{OrbinexProtocol::mouseCharacteristicUUID,
                                OrbinexProtocol::keyboardCharacteristicUUID,
                                OrbinexProtocol::controlCharacteristicUUID};

}  // namespace

void CentralBLEManager::handshakeTimedOut(const UUID& peripheral, const std::string& name) {
    if (!hasSessionWith(peripheral) || *phase == Phase::connected) return;
    std::optional<BLEAlert> shown;
    if (session_->intent == Intent::user) shown = LinkText::handshakeTimedOutAlert(name);
    failSession(LinkText::handshakeTimedOut(), std::move(shown), true);
}

void CentralBLEManager::servicesDiscovered(const Peripheral& peripheral, std::span<const UUID> services,
                                           const BluetoothError* error) {
    const UUID id = peripheral.identifier;
    if (!hasSessionWith(id)) return;
    if (error) {
        failSession(LinkText::serviceDiscoveryFailed(*error), std::nullopt, true);
    } else if (std::ranges::find(services, OrbinexProtocol::serviceUUID) != services.end()) {
        ports_.central.discoverCharacteristics(
            id, OrbinexProtocol::serviceUUID,
            std::array{OrbinexProtocol::mouseCharacteristicUUID, OrbinexProtocol::keyboardCharacteristicUUID,
                       OrbinexProtocol::infoCharacteristicUUID, OrbinexProtocol::controlCharacteristicUUID});
    } else {
        suppressions_.markWithoutService(id, ports_.queue.uptime());
        failSession(LinkText::serviceMissing(), std::nullopt, false);
    }
}

void CentralBLEManager::characteristicsDiscovered(const Peripheral& peripheral, const UUID& service,
                                                  std::span<const Characteristic> characteristics,
                                                  const BluetoothError* error) {
    const UUID id = peripheral.identifier;
    if (!hasSessionWith(id) || service != OrbinexProtocol::serviceUUID) return;
    if (error) {
        failSession(LinkText::characteristicDiscoveryFailed(*error), std::nullopt, true);
        return;
    }
    for (const auto& characteristic : characteristics) {
        if (auto* slot = slotFor(*session_, characteristic.uuid)) *slot = characteristic;
    }
    if (session_->mouse && session_->keyboard && session_->info && session_->control) {
        ports_.central.readValue(id, OrbinexProtocol::infoCharacteristicUUID);
    } else {
        suppressions_.markWithoutService(id, ports_.queue.uptime());
        failSession(LinkText::updateRequired(),
                    LinkText::characteristicMissingAlert(activeName(LinkText::theIPhone)), false);
    }
}

void CentralBLEManager::deviceInfoArrived(ByteView value, const BluetoothError* error) {
    // An iPhone tells who it is once; it cannot become another one in the middle of a session.
    if (session_->deviceInfo) return;
    if (isPairingError(error)) {
        handlePairingFailure(error);
        return;
    }
    if (error) {
        failSession(LinkText::deviceInfoUnreadable(*error), std::nullopt, true);
        return;
    }
    const auto info = DeviceInfo::decode(value);
    if (!info) {
        failSession(LinkText::deviceInfoInvalid(), std::nullopt, true);
        return;
    }
    const UUID id = session_->peripheral.identifier;
    if (info->protocolVersion != OrbinexProtocol::protocolVersion) {
        suppressions_.markWithoutService(id, ports_.queue.uptime());
        failSession(LinkText::versionMismatch(), LinkText::versionAlert(info->name, info->protocolVersion),
                    false);
        return;
    }
    if (session_->intent == Intent::user && !forgotten_.contains(info->deviceID)) {
        // Whatever has sent this iPhone away before, under this address or another: the user wants it.
        suppressions_.clear(id, info->deviceID);
    } else {
        if (suppressions_.isDeviceSuppressed(info->deviceID)) {
            endSession(true, std::nullopt);
            resumeDiscovery();
            return;
        }
        if (!trustStore_.deviceWithID(info->deviceID)) {
            endSession(true, LinkText::waitingToBeTrusted(info->name));
            resumeDiscovery();
            return;
        }
    }
    trust(*info);
    session_->deviceInfo = *info;
    activeDevice = ActiveDevice{id, info->deviceID, info->name};
    relinkNearbyDevices();
    for (const auto& uuid : subscribed) {
        if (slotFor(*session_, uuid)->has_value()) ports_.central.setNotify(id, uuid, true);
    }
}

void CentralBLEManager::trust(const DeviceInfo& info) {
    const auto now = ports_.queue.now();
    const auto existing = trustStore_.deviceWithID(info.deviceID);
    trustStore_.trust(TrustedDevice{.id = info.deviceID,
                                    .name = info.name,
                                    .token = deviceToken(info.deviceID),
                                    .peripheralIdentifier = session_->peripheral.identifier,
                                    .dateAdded = existing ? existing->dateAdded : now,
                                    .lastConnected = now});
}

void CentralBLEManager::notificationStateUpdated(const Peripheral& peripheral, const UUID& characteristic,
                                                 bool isNotifying, const BluetoothError* error) {
    if (!hasSessionWith(peripheral.identifier)) return;
    if (isPairingError(error)) {
        handlePairingFailure(error);
        return;
    }
    if (error) {
        failSession(LinkText::subscriptionFailed(*error), std::nullopt, true);
        return;
    }
    auto& notifying = session_->notifying;
    if (isNotifying) {
        notifying.insert(characteristic);
    } else {
        notifying.erase(characteristic);
    }
    if (*phase == Phase::connected || !session_->deviceInfo) return;
    if (std::ranges::all_of(subscribed, [&](const UUID& uuid) { return notifying.contains(uuid); })) {
        completeConnection();
    }
}

void CentralBLEManager::completeConnection() {
    const UUID id = session_->peripheral.identifier;
    const DeviceInfo info = *session_->deviceInfo;
    writeControl(encodeHello(macName(ports_.computerName())));
    watchdog_.cancel();
    resetRetryState();
    stopScanning();
    cancelPendingConnects();
    phase = Phase::connected;
    activeDevice = ActiveDevice{id, info.deviceID, info.name};
    statusMessage = LinkText::connected(info.name);
    relinkNearbyDevices();
    ports_.bridge.setBLEClientConnected(true);
    sendActiveApp(*ports_.bridge.activeBundleID);
    sendTelemetry(*ports_.bridge.currentTelemetry);
}

}  // namespace orbinex
