#include "trust/trusted_device.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace orbinex {

namespace {

using nlohmann::json;

const json* member(const json& object, const char* key) {
    const auto it = object.find(key);
    return it == object.end() || it->is_null() ? nullptr : &*it;
}

std::optional<std::string> readString(const json* value) {
    if (!value || !value->is_string()) return std::nullopt;
    return value->get<std::string>();
}

std::optional<UUID> readUUID(const json* value) {
    if (!value || !value->is_string()) return std::nullopt;
    return UUID::parse(value->get_ref<const std::string&>());
}

std::optional<Date> readDate(const json* value) {
    if (!value || !value->is_number()) return std::nullopt;
    return Date(Seconds(value->get<double>()));
}

std::optional<TrustedDevice> readDevice(const json& object) {
    if (!object.is_object()) return std::nullopt;
    const auto id = readUUID(member(object, "id"));
    const auto name = readString(member(object, "name"));
    const auto token = readString(member(object, "token"));
    const auto dateAdded = readDate(member(object, "dateAdded"));
    if (!id || !name || !token || !dateAdded) return std::nullopt;
    TrustedDevice device{*id, *name, *token, std::nullopt, *dateAdded, std::nullopt};
    if (const auto* value = member(object, "peripheralIdentifier")) {
        device.peripheralIdentifier = readUUID(value);
        if (!device.peripheralIdentifier) return std::nullopt;
    }
    if (const auto* value = member(object, "lastConnected")) {
        device.lastConnected = readDate(value);
        if (!device.lastConnected) return std::nullopt;
    }
    return device;
}

double seconds(Date date) {
    return date.time_since_epoch().count();
}

}  // namespace

std::optional<std::string> encodeTrustedDevices(const std::vector<TrustedDevice>& devices) {
    json array = json::array();
    for (const auto& device : devices) {
        json object{{"id", device.id.text()},
                    {"name", device.name},
                    {"token", device.token},
                    {"dateAdded", seconds(device.dateAdded)}};
        if (device.peripheralIdentifier) object["peripheralIdentifier"] = device.peripheralIdentifier->text();
        if (device.lastConnected) object["lastConnected"] = seconds(*device.lastConnected);
        if (!std::isfinite(seconds(device.dateAdded))) return std::nullopt;
        if (device.lastConnected && !std::isfinite(seconds(*device.lastConnected))) return std::nullopt;
        array.push_back(std::move(object));
    }
    try {
        return array.dump();
    } catch (const json::exception&) {
        return std::nullopt;  // a text that is not UTF-8
    }
}

std::optional<std::vector<TrustedDevice>> decodeTrustedDevices(std::string_view text) {
    const json array = json::parse(text, nullptr, false);
    if (!array.is_array()) return std::nullopt;
    std::vector<TrustedDevice> devices;
    devices.reserve(array.size());
    for (const auto& element : array) {
        auto device = readDevice(element);
        if (!device) return std::nullopt;
        devices.push_back(std::move(*device));
    }
    return devices;
}

void sortIntoStoreOrder(std::vector<TrustedDevice>& devices) {
    std::ranges::stable_sort(devices, std::ranges::greater{}, [](const TrustedDevice& device) {
        return device.lastConnected.value_or(device.dateAdded);
    });
}

}  // namespace orbinex
