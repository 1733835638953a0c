#pragma once

#include <chrono>
#include <optional>
#include <unordered_map>

#include "base/uuid.h"

namespace orbinex {

enum class SuppressionReason {
    user,           ///< the user disconnected or cancelled
    remote,         ///< the iPhone asked to disconnect or withdrew its service
    pairingFailed,  ///< secure pairing failed or was refused
};

struct Suppression {
    SuppressionReason reason;
    /// On the main queue's uptime, so that setting the wall clock neither shortens nor prolongs it.
    std::chrono::nanoseconds since;
};

/// Which iPhones are not to be connected automatically: those that the user or the iPhone sent away, by
/// peripheral identifier and by device id, and peripherals that were found without a usable service. Held in
/// memory only; it outlives sessions and power cycles.
class SuppressionBook {
  public:
    using Uptime = std::chrono::nanoseconds;
    /// How old an entry of the iPhone's making must be before an advertisement ends it.
    static constexpr std::chrono::seconds remoteLifetime{3};

    void suppress(const std::optional<UUID>& peripheral, const std::optional<UUID>& device,
                  SuppressionReason reason, Uptime now);
    [[nodiscard]] bool isSuppressed(const std::optional<UUID>& peripheral,
                                    const std::optional<UUID>& device) const;
    [[nodiscard]] bool isDeviceSuppressed(const UUID& device) const { return devices_.contains(device); }
    /// Also forgets that the peripheral had no usable service.
    void clear(const std::optional<UUID>& peripheral, const std::optional<UUID>& device);
    /// Without touching what is known of the peripheral's service.
    void removePeripheral(const UUID& peripheral) { peripherals_.erase(peripheral); }
    void removeDevice(const UUID& device) { devices_.erase(device); }
    /// To be called for every advertisement: ends the entries with reason `remote`, and the service entry,
    /// that are more than `remoteLifetime` old.
    void expireRemote(const UUID& peripheral, const std::optional<UUID>& device, Uptime now);

    void markWithoutService(const UUID& peripheral, Uptime now) { noService_[peripheral] = now; }
    [[nodiscard]] bool isWithoutService(const UUID& peripheral) const {
        return noService_.contains(peripheral);
    }
    void clearWithoutService(const UUID& peripheral) { noService_.erase(peripheral); }
    void clearAllWithoutService() { noService_.clear(); }

  private:
    std::unordered_map<UUID, Suppression> peripherals_;
    std::unordered_map<UUID, Suppression> devices_;
    std::unordered_map<UUID, Uptime> noService_;
};

}  // namespace orbinex
