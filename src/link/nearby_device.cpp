#include "link/nearby_device.h"

#include <algorithm>
#include <utility>

#include "link/link_texts.h"

namespace orbinex {

std::optional<AdvertisedName> parseAdvertisedName(std::string_view advertised) {
    constexpr std::string_view prefix = "OX";
    constexpr std::size_t tokenLength = 6;
    if (!advertised.starts_with(prefix)) return std::nullopt;
    advertised.remove_prefix(prefix.size());
    if (advertised.find(':') != tokenLength) return std::nullopt;
    std::string token(advertised.substr(0, tokenLength));
    for (char& c : token) {
        if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
        if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'))) return std::nullopt;
    }
    return AdvertisedName{std::move(token), std::string(advertised.substr(tokenLength + 1))};
}

NearbyDevice heard(const NearbyDevice* known, const UUID& id, const std::string& advertisedName, int rssi,
                   std::chrono::nanoseconds now) {
    NearbyDevice device{id, {}, std::nullopt, rssi, now, std::nullopt};
    if (auto parsed = parseAdvertisedName(advertisedName)) {
        device.name = std::move(parsed->name);
        device.token = std::move(parsed->token);
    } else if (known) {
        device.name = known->name;
        device.token = known->token;
    } else {
        device.name = advertisedName.empty() ? LinkText::someIPhone : advertisedName;
    }
    if (rssi == unavailableRSSI) device.rssi = known ? known->rssi : unknownRSSI;
    return device;
}

const NearbyDevice* findNearby(const NearbyList& list, const UUID& id) {
    const auto found = std::ranges::find(list, id, &NearbyDevice::id);
    return found == list.end() ? nullptr : &*found;
}

void insertNearby(NearbyList& list, NearbyDevice device) {
    const auto found = std::ranges::find(list, device.id, &NearbyDevice::id);
    if (found == list.end()) {
        list.push_back(std::move(device));
    } else {
        *found = std::move(device);
    }
}

NearbyList prunedNearby(const NearbyList& list, std::chrono::nanoseconds now,
                        const std::optional<UUID>& keep) {
    NearbyList result;
    std::ranges::copy_if(list, std::back_inserter(result), [&](const NearbyDevice& device) {
        return device.lastSeen >= now - nearbyLifetime || device.id == keep;
    });
    return result;
}

NearbyList untrustedNearby(const NearbyList& list) {
    NearbyList result;
    std::ranges::copy_if(list, std::back_inserter(result),
                         [](const NearbyDevice& device) { return !device.trustedDeviceID; });
    std::ranges::stable_sort(result, std::ranges::greater{}, &NearbyDevice::rssi);
    return result;
}

}  // namespace orbinex
