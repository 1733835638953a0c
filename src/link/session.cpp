// The traffic of a session, and its end.

#include <algorithm>
#include <utility>
#include <variant>

#include "link/central_ble_manager.h"
#include "link/link_texts.h"
#include "protocol/control_message.h"
#include "protocol/gatt.h"
#include "protocol/session_encoding.h"

namespace orbinex {

void CentralBLEManager::valueUpdated(const Peripheral& peripheral, const UUID& characteristic, ByteView value,
                                     const BluetoothError* error) {
    if (!hasSessionWith(peripheral.identifier)) return;
    if (characteristic == OrbinexProtocol::infoCharacteristicUUID) {
        deviceInfoArrived(value, error);
    } else if (error) {
        return;
    } else if (characteristic == OrbinexProtocol::controlCharacteristicUUID) {
        controlMessageArrived(value);
    } else if (characteristic == OrbinexProtocol::mouseCharacteristicUUID ||
               characteristic == OrbinexProtocol::keyboardCharacteristicUUID) {
        inputArrived(value);
    }
}

void CentralBLEManager::inputArrived(ByteView value) {
    if (*phase != Phase::connected || !onInputPacket) return;
    if (const auto packet = DecodedPacket::decode(value)) onInputPacket(*packet);
}

void CentralBLEManager::controlMessageArrived(ByteView value) {
    const auto message = ControlMessage::decode(value);
    if (!message) return;
    if (const auto* command = std::get_if<DAWCommand>(&message->value)) {
        ports_.bridge.handleCommand(*command);
    } else if (std::holds_alternative<ControlMessage::DisconnectRequest>(message->value)) {
        remoteEnded(LinkText::remoteDisconnected(activeName(LinkText::someIPhone)));
    }
}

void CentralBLEManager::servicesInvalidated(const Peripheral& peripheral, std::span<const UUID> services) {
    if (!hasSessionWith(peripheral.identifier)) return;
    if (std::ranges::find(services, OrbinexProtocol::serviceUUID) == services.end()) return;
    suppressions_.markWithoutService(peripheral.identifier, ports_.queue.uptime());
    remoteEnded(LinkText::paused(activeName(LinkText::someIPhone)));
}

/// The iPhone has ended the session of its own accord.
void CentralBLEManager::remoteEnded(const std::string& message) {
    suppressSession(SuppressionReason::remote);
    endSession(true, message);
    startScanning();
}

void CentralBLEManager::sendActiveApp(const std::string& bundleID) {
    if (!bundleID.empty()) writeControl(encodeActiveApp(bundleID));
}

void CentralBLEManager::sendTelemetry(const SessionTelemetry& telemetry) {
    writeControl(encodeTelemetry(telemetry));
}

void CentralBLEManager::sendControlData(ByteView message) {
    writeControl(message);
}

bool CentralBLEManager::canWriteControl() const {
    return session_ && session_->control && ports_.central.isConnected(session_->peripheral.identifier);
}

void CentralBLEManager::writeControl(ByteView message) {
    if (!canWriteControl()) return;
    const auto type =
        session_->control->canWriteWithoutResponse ? WriteType::withoutResponse : WriteType::withResponse;
    ports_.central.writeValue(session_->peripheral.identifier, session_->control->uuid, message, type);
}

void CentralBLEManager::writeGoodbye() {
    if (!canWriteControl()) return;
    ports_.central.writeValue(session_->peripheral.identifier, session_->control->uuid, encodeGoodbye(),
                              WriteType::withoutResponse);
}

void CentralBLEManager::disconnect() {
    if (!session_) return;
    const UUID id = session_->peripheral.identifier;
    suppressSession(SuppressionReason::user);
    writeGoodbye();
    endSession(false, LinkText::disconnectedFrom(activeName(LinkText::someIPhone)));
    intentionalDisconnects_.insert(id);
    goodbyeTimers_[id] = ports_.queue.after(goodbyeTime, [this, id] {
        ports_.central.cancelConnection(id);
        goodbyeTimers_.erase(id);  // last: this destroys what is running
    });
    startScanning();
}

void CentralBLEManager::endSession(bool cancel, const std::optional<std::string>& message) {
    if (!session_) return;
    const UUID id = session_->peripheral.identifier;
    const bool wasConnected = *phase == Phase::connected;
    session_.reset();
    lookedFor_.reset();
    watchdog_.cancel();
    if (cancel) dropPeripheral(id);
    if (wasConnected && onConnectionLost) onConnectionLost();
    ports_.bridge.setBLEClientConnected(false);
    activeDevice = std::nullopt;
    phase = idlePhase();
    if (message) statusMessage = *message;
}

void CentralBLEManager::failSession(const std::string& reason, std::optional<BLEAlert> shown, bool retry) {
    if (!session_) return;
    const Intent intent = session_->intent;
    endSession(true, reason);
    if (shown) alert = std::move(shown);
    if (retry && intent != Intent::user) {
        scheduleRetry();
    } else {
        resumeDiscovery();
    }
}

}  // namespace orbinex
