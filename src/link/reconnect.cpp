// When a connection is tried again by itself, and when it is not.

#include <utility>

#include "link/central_ble_manager.h"
#include "link/link_texts.h"

namespace orbinex {

void CentralBLEManager::scheduleRetry() {
    if (isRetryScheduled()) return;
    const Seconds delay = backoff_.next();
    retryTimer_ = ports_.queue.after(std::chrono::duration_cast<MainQueue::Delay>(delay),
                                     [this] { resumeDiscovery(); });
    phase = idlePhase();
    statusMessage = LinkText::reconnecting(delay);
    startScanning();
}

void CentralBLEManager::resetRetryState() {
    backoff_.attempt = 0;
    retryTimer_.cancel();
}

void CentralBLEManager::restartAfterSleep() {
    resetRetryState();
    wakeTimer_ = ports_.queue.after(restartAfterWake, [this] { resumeDiscovery(); });
}

void CentralBLEManager::suppress(const std::optional<UUID>& peripheral, const std::optional<UUID>& device,
                                 SuppressionReason reason) {
    suppressions_.suppress(peripheral, device, reason, ports_.queue.uptime());
    if (peripheral && pendingConnects_.erase(*peripheral) > 0 && peripherals_.contains(*peripheral)) {
        dropPeripheral(*peripheral);
    }
}

void CentralBLEManager::suppressSession(SuppressionReason reason) {
    const auto& info = session_->deviceInfo;
    suppress(session_->peripheral.identifier, info ? std::optional(info->deviceID) : std::nullopt, reason);
}

void CentralBLEManager::queuePendingConnect(const Peripheral& peripheral) {
    const UUID id = peripheral.identifier;
    if (hasSessionWith(id) || hasAttemptFor(id)) return;
    peripherals_.insert_or_assign(id, peripheral);
    cutFarewell(id);
    intentionalDisconnects_.erase(id);
    pendingConnects_.insert(id);
    ports_.central.connect(peripheral, Initiative::program);
}

void CentralBLEManager::cancelPendingConnects() {
    const auto pending = std::exchange(pendingConnects_, {});
    for (const auto& id : pending) {
        if (peripherals_.contains(id)) dropPeripheral(id);
    }
}

void CentralBLEManager::dropPeripheral(const UUID& peripheral) {
    intentionalDisconnects_.insert(peripheral);
    ports_.central.cancelConnection(peripheral);
}

/// A farewell still under way to an iPhone that is wanted again is cut short, so that it cannot cut what is
/// begun now.
void CentralBLEManager::cutFarewell(const UUID& peripheral) {
    if (goodbyeTimers_.erase(peripheral) > 0) ports_.central.cancelConnection(peripheral);
}

void CentralBLEManager::handlePairingFailure(const BluetoothError* error) {
    if (!session_) return;
    const UUID id = session_->peripheral.identifier;
    const auto record = trustStore_.deviceForPeripheral(id);
    const std::string name = activeName(record ? record->name.c_str() : LinkText::yourIPhone);
    const auto device = session_->deviceInfo ? std::optional(session_->deviceInfo->deviceID)
                        : record             ? std::optional(record->id)
                                             : std::nullopt;
    suppress(id, device, SuppressionReason::pairingFailed);
    failSession(LinkText::pairingNotCompleted(), LinkText::pairingAlert(name, error), false);
}

}  // namespace orbinex
