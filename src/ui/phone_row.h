#pragma once

#include <string>
#include <vector>

#include "base/date.h"
#include "base/uuid.h"
#include "link/link_model.h"
#include "link/nearby_device.h"
#include "trust/trusted_device.h"

namespace orbinex {

/// One iPhone as the lists show it.
struct PhoneRow {
    /// Of the trusted record, or of the entry in the nearby list.
    UUID id;
    std::string name;
    /// The panel's word for it, shorter than the window's.
    std::string panelStatus;
    std::string windowStatus;
    bool canConnect = false;
    bool canDisconnect = false;
    /// From 0 to 3.
    int bars = 0;

    friend bool operator==(const PhoneRow&, const PhoneRow&) = default;
};

/// What decides a trusted iPhone's row.
struct TrustedStanding {
    LinkPhase phase = LinkPhase::searching;
    bool isActive = false;
    bool isNearby = false;
};
[[nodiscard]] PhoneRow trustedRow(const TrustedDevice& device, const TrustedStanding& standing, Date now);
[[nodiscard]] PhoneRow nearbyRow(const NearbyDevice& device);

/// 3 from -60 dBm, 2 from -75 dBm, 1 from -90 dBm, else 0.
[[nodiscard]] constexpr int signalBars(int rssi) {
    return static_cast<int>(rssi >= -60) + static_cast<int>(rssi >= -75) + static_cast<int>(rssi >= -90);
}

}  // namespace orbinex
