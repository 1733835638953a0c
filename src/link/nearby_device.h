#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/uuid.h"

namespace orbinex {

/// What an iPhone's advertised name tells.
struct AdvertisedName {
    /// Six upper-case hex digits.
    std::string token;
    /// Unchanged; may be empty.
    std::string name;

    friend bool operator==(const AdvertisedName&, const AdvertisedName&) = default;
};

/// Reads "OX", six hex digits of either case, ":" and the display name; anything else is nothing.
std::optional<AdvertisedName> parseAdvertisedName(std::string_view advertised);

/// One iPhone heard advertising.
struct NearbyDevice {
    /// The platform's identifier of the peripheral.
    UUID id;
    std::string name;
    /// From the advertised name; it stays the same when the peripheral identifier changes.
    std::optional<std::string> token;
    /// Last signal strength in dBm.
    int rssi = 0;
    /// When it was last heard, on the main queue's uptime: setting the wall clock makes no iPhone vanish or
    /// stay.
    std::chrono::nanoseconds lastSeen{0};
    /// The trusted record that it belongs to, if any.
    std::optional<UUID> trustedDeviceID;

    friend bool operator==(const NearbyDevice&, const NearbyDevice&) = default;
};

using NearbyList = std::vector<NearbyDevice>;

/// What the platform gives for a signal strength that it could not read, and what stands for it in the list
/// while no better reading is known, in dBm.
inline constexpr int unavailableRSSI = 127;
inline constexpr int unknownRSSI = -100;
/// How long an iPhone stays in the list after it was last heard.
inline constexpr std::chrono::seconds nearbyLifetime{12};

/// The entry for a peripheral after hearing it once more: names and signal that this advertisement does not
/// tell are kept from `known`, the entry so far. The trusted record is left for the caller to fill in.
NearbyDevice heard(const NearbyDevice* known, const UUID& id, const std::string& advertisedName, int rssi,
                   std::chrono::nanoseconds now);

/// The entry with this peripheral identifier, or null.
const NearbyDevice* findNearby(const NearbyList& list, const UUID& id);
/// Replaces the entry with the same identifier in place, or appends.
void insertNearby(NearbyList& list, NearbyDevice device);
/// The entries heard within `nearbyLifetime` before `now`, and the one to keep whatever its age.
NearbyList prunedNearby(const NearbyList& list, std::chrono::nanoseconds now,
                        const std::optional<UUID>& keep);
/// The entries without a trusted record, strongest signal first; equal signals keep their order.
NearbyList untrustedNearby(const NearbyList& list);

}  // namespace orbinex
