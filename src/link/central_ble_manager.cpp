#include "link/central_ble_manager.h"

#include <utility>

#include "link/link_texts.h"

namespace orbinex {

CentralBLEManager::CentralBLEManager(TrustedDeviceStore& trustStore, Ports ports)
    : statusMessage(LinkText::unavailable(BluetoothState::unknown)),
      trustStore_(trustStore),
      ports_(std::move(ports)) {
    ports_.central.start(*this);
    pruneTimer_ = ports_.queue.every(pruneInterval, [this] { pruneNearby(); });
    wakeObserver_ = ports_.wake.didWake.subscribe([this] { restartAfterSleep(); });
    connectBridge();
}

CentralBLEManager::~CentralBLEManager() {
    if (session_) endSession(false, std::nullopt);
    ports_.central.stop();
}

void CentralBLEManager::connectBridge() {
    ports_.bridge.onActiveAppChanged =
        lifetime_.guard([this](const std::string& bundleID) { sendActiveApp(bundleID); });
    ports_.bridge.onTelemetryChanged =
        lifetime_.guard([this](const SessionTelemetry& telemetry) { sendTelemetry(telemetry); });
    ports_.bridge.onDAWPacketReady = lifetime_.guard([this](ByteView message) { sendControlData(message); });
}

void CentralBLEManager::bluetoothStateUpdated(BluetoothState state) {
    bluetoothState = state;
    if (state == BluetoothState::poweredOn) {
        resumeDiscovery();
        return;
    }
    if (session_) endSession(false, std::nullopt);
    attempt_.reset();
    pendingConnects_.clear();
    intentionalDisconnects_.clear();
    goodbyeTimers_.clear();
    retryTimer_.cancel();
    watchdog_.cancel();
    scanStopTimer_.cancel();
    peripherals_.clear();
    nearbyDevices = NearbyList{};
    isScanning = false;
    activeDevice = std::nullopt;
    phase = Phase::bluetoothUnavailable;
    statusMessage = LinkText::unavailable(state);
}

void CentralBLEManager::setAutoConnectEnabled(bool enabled) {
    if (enabled == autoConnectEnabled_) return;
    autoConnectEnabled_ = enabled;
    if (enabled) {
        resumeDiscovery();
    } else {
        cancelPendingConnects();
    }
}

bool CentralBLEManager::isActive(const TrustedDevice& device) const {
    const auto& active = *activeDevice;
    if (!active) return false;
    return active->deviceID == device.id || device.peripheralIdentifier == active->peripheralID;
}

bool CentralBLEManager::hasSessionWith(const UUID& peripheral) const {
    return session_ && session_->peripheral.identifier == peripheral;
}

bool CentralBLEManager::hasAttemptFor(const UUID& peripheral) const {
    return attempt_ && attempt_->id == peripheral;
}

std::optional<UUID> CentralBLEManager::trustedIDForPeripheral(const UUID& peripheral) const {
    const auto record = trustStore_.deviceForPeripheral(peripheral);
    return record ? std::optional(record->id) : std::nullopt;
}

std::string CentralBLEManager::activeName(const char* otherwise) const {
    return activeDevice.get() ? activeDevice.get()->name : otherwise;
}

}  // namespace orbinex
