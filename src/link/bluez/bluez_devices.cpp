#include "link/bluez/bluez_devices.h"

#include <utility>

#include "link/bluez/bluez_names.h"
#include "link/nearby_device.h"

namespace orbinex {

BluezDevices::BluezDevices(const BluezObjects& objects, UserDefaults& defaults)
    : objects_(objects), defaults_(defaults), book_(defaults.string(identitiesKey).value_or(std::string())) {}

void BluezDevices::useAdapter(const QString& adapter) {
    known_.clear();
    adapter_ = adapter;
    if (adapter.isEmpty()) return;
    for (const auto& path : objects_.pathsWith(Bluez::device, adapter)) noticed(path);
}

std::optional<UUID> BluezDevices::noticed(const QString& path) {
    const auto device = readDevice(objects_, path);
    if (!device || adapter_.isEmpty() || device->adapter != adapter_) return std::nullopt;
    const auto [found, isNew] = known_.try_emplace(path);
    auto& known = found->second;
    if (isNew) known.identifier = book_.identifierFor(device->address, device->isAddressRandom);
    if (device->isConnected && device->classic != ClassicLink::possible) {
        known.nameWhileConnected = device->name;
    } else if (!device->name.empty() && device->name != known.nameWhileConnected) {
        // The signal that it is connected may come after the one with the name that a connection brings.
        const bool isOurs = parseAdvertisedName(known.advertisedName.value_or(std::string())).has_value();
        if (!isOurs || parseAdvertisedName(device->name)) known.advertisedName = device->name;
    }
    if (device->isBonded && book_.remember(device->address, device->isAddressRandom, known.identifier)) {
        defaults_.setString(identitiesKey, book_.stored());
    }
    const bool wasBonded = std::exchange(known.isBonded, device->isBonded);
    const UUID identifier = known.identifier;
    if (!isNew && !wasBonded && device->isBonded) onBonded(identifier);
    return identifier;
}

std::optional<UUID> BluezDevices::identifierAt(const QString& path) const {
    // The last path that is not greater is this one, or the one above it.
    const auto next = known_.upper_bound(path);
    if (next == known_.begin()) return std::nullopt;
    const auto& [candidate, known] = *std::prev(next);
    const bool isIt = path == candidate || path.startsWith(candidate + QLatin1Char('/'));
    return isIt ? std::optional(known.identifier) : std::nullopt;
}

const BluezDevices::Entry* BluezDevices::entry(const UUID& identifier) const {
    const Entry* result = nullptr;
    for (const auto& entry : known_) {
        if (entry.second.identifier != identifier) continue;
        // Two objects may be one phone for a moment, while its address is changing hands.
        const auto device = readDevice(objects_, entry.first);
        if (!result || (device && device->isConnected)) result = &entry;
    }
    return result;
}

std::optional<BluezDevice> BluezDevices::find(const UUID& identifier) const {
    const auto* found = entry(identifier);
    return found ? readDevice(objects_, found->first) : std::nullopt;
}

std::vector<UUID> BluezDevices::all() const {
    std::vector<UUID> result;
    for (const auto& [path, known] : known_) result.push_back(known.identifier);
    return result;
}

Peripheral BluezDevices::peripheral(const UUID& identifier) const {
    const auto device = find(identifier);
    return {identifier, device ? device->name : std::string()};
}

std::optional<std::string> BluezDevices::advertisedName(const UUID& identifier) const {
    const auto* found = entry(identifier);
    return found ? found->second.advertisedName : std::nullopt;
}

}  // namespace orbinex
