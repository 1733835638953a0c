#include "link/bluez/bluez_sightings.h"

namespace orbinex {

bool BluezSightings::heard(const UUID& device, Uptime now) {
    const auto [found, isNew] = sightings_.try_emplace(device, Sighting{now, now});
    auto& sighting = found->second;
    sighting.heard = now;
    if (!isNew && now - sighting.reported < shortestInterval) return false;
    sighting.reported = now;
    return true;
}

void BluezSightings::reportAnew() {
    for (auto& [device, sighting] : sightings_) sighting.reported = sighting.heard - shortestInterval;
}

bool BluezSightings::isInSight(const UUID& device, Uptime now) const {
    const auto found = sightings_.find(device);
    return found != sightings_.end() && now - found->second.heard <= lifetime;
}

}  // namespace orbinex
