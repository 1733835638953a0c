#include "link/suppression_book.h"

namespace orbinex {

void SuppressionBook::suppress(const std::optional<UUID>& peripheral, const std::optional<UUID>& device,
                               SuppressionReason reason, Uptime now) {
    if (peripheral) peripherals_.insert_or_assign(*peripheral, Suppression{reason, now});
    if (device) devices_.insert_or_assign(*device, Suppression{reason, now});
}

bool SuppressionBook::isSuppressed(const std::optional<UUID>& peripheral,
                                   const std::optional<UUID>& device) const {
    return (peripheral && peripherals_.contains(*peripheral)) || (device && devices_.contains(*device));
}

void SuppressionBook::clear(const std::optional<UUID>& peripheral, const std::optional<UUID>& device) {
    if (peripheral) {
        peripherals_.erase(*peripheral);
        noService_.erase(*peripheral);
    }
    if (device) devices_.erase(*device);
}

void SuppressionBook::expireRemote(const UUID& peripheral, const std::optional<UUID>& device, Uptime now) {
    const auto expire = [now](auto& entries, const UUID& id) {
        const auto entry = entries.find(id);
        if (entry != entries.end() && entry->second.reason == SuppressionReason::remote &&
            now - entry->second.since > remoteLifetime) {
            entries.erase(entry);
        }
    };
    expire(peripherals_, peripheral);
    if (device) expire(devices_, *device);
    const auto service = noService_.find(peripheral);
    if (service != noService_.end() && now - service->second > remoteLifetime) noService_.erase(service);
}

}  // namespace orbinex
