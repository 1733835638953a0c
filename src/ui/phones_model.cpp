#include "ui/phones_model.h"

#include <algorithm>
#include <iterator>

namespace orbinex {

PhonesModel::PhonesModel(MainQueue& queue, CentralBLEManager& central, TrustedDeviceStore& trustStore)
    : queue_(queue), central_(central), trustStore_(trustStore) {
    const auto refresh = [this](const auto&) { update(); };
    observers_.push_back(central.phase.onDidChange(refresh));
    observers_.push_back(central.activeDevice.onDidChange(refresh));
    observers_.push_back(central.nearbyDevices.onDidChange(refresh));
    observers_.push_back(trustStore.devices.onDidChange(refresh));
    dates_ = queue.every(dateInterval, [this] { update(); });
    update();
}

void PhonesModel::update() {
    const Date now = queue_.now();
    std::vector<PhoneRow> rows;
    for (const TrustedDevice& device : *trustStore_.devices) {
        rows.push_back(trustedRow(
            device, {*central_.phase, central_.isActive(device), central_.isNearby(device.id)}, now));
    }
    trusted_.setRows(rows);
    rows.clear();
    std::ranges::transform(central_.untrustedNearbyDevices(), std::back_inserter(rows), nearbyRow);
    nearby_.setRows(rows);
}

std::optional<TrustedDevice> PhonesModel::trustedDevice(const QString& id) const {
    const auto parsed = UUID::parse(id.toStdString());
    return parsed ? trustStore_.deviceWithID(*parsed) : std::nullopt;
}

void PhonesModel::connectTrusted(const QString& id) {
    if (const auto device = trustedDevice(id)) central_.connectTrustedDevice(*device);
}

void PhonesModel::connectNearby(const QString& id) {
    if (const auto parsed = UUID::parse(id.toStdString())) central_.connectNearbyDevice(*parsed);
}

void PhonesModel::disconnectTrusted(const QString& id) {
    const auto device = trustedDevice(id);
    if (device && central_.isActive(*device)) central_.disconnect();
}

void PhonesModel::searchAgain() {
    central_.rescan();
}

}  // namespace orbinex
