#include "trust/trusted_device_store.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace orbinex {

TrustedDeviceStore::TrustedDeviceStore(UserDefaults& defaults, std::string storageKey)
    : defaults_(defaults), storageKey_(std::move(storageKey)) {
    load();
}

void TrustedDeviceStore::load() {
    const auto stored = defaults_.data(storageKey_);
    auto decoded = stored ? decodeTrustedDevices(*stored) : std::nullopt;
    devices = std::move(decoded).value_or(std::vector<TrustedDevice>{});
}

void TrustedDeviceStore::save() const {
    if (const auto encoded = encodeTrustedDevices(devices.get())) defaults_.setData(storageKey_, *encoded);
}

template <class Predicate>
std::optional<TrustedDevice> TrustedDeviceStore::first(Predicate matches) const {
    const auto found = std::ranges::find_if(devices.get(), matches);
    return found == devices.get().end() ? std::nullopt : std::optional(*found);
}

std::optional<TrustedDevice> TrustedDeviceStore::deviceForPeripheral(const UUID& identifier) const {
    return first([&](const TrustedDevice& device) { return device.peripheralIdentifier == identifier; });
}

std::optional<TrustedDevice> TrustedDeviceStore::deviceForToken(std::string_view token) const {
    const auto wanted = lowercased(token);
    return first([&](const TrustedDevice& device) { return lowercased(device.token) == wanted; });
}

std::optional<TrustedDevice> TrustedDeviceStore::deviceWithID(const UUID& id) const {
    return first([&](const TrustedDevice& device) { return device.id == id; });
}

void TrustedDeviceStore::trust(TrustedDevice record) {
    auto list = devices.get();
    std::erase_if(list, [&](const TrustedDevice& device) {
        return device.id == record.id ||
               (record.peripheralIdentifier && device.peripheralIdentifier == record.peripheralIdentifier);
    });
    list.push_back(std::move(record));
    sortIntoStoreOrder(list);
    devices = std::move(list);
    save();
}

void TrustedDeviceStore::remove(const UUID& id) {
    auto list = devices.get();
    std::erase_if(list, [&](const TrustedDevice& device) { return device.id == id; });
    devices = std::move(list);
    save();
}

}  // namespace orbinex
