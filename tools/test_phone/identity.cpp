#include "test_phone/identity.h"

#include <algorithm>

#include "base/text.h"
#include "protocol/device_info.h"

namespace orbinex::test_phone {

namespace {

/// "hci2" before "hci10".
bool comesFirst(const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

}  // namespace

std::string advertisedName(const UUID& deviceID, std::string_view name) {
    std::string result = "OX" + deviceToken(deviceID) + ":";
    while (!name.empty()) {
        const auto length = firstCharacterLength(name);
        if (result.size() + length > maximumAdvertisedBytes) break;
        result.append(name.substr(0, length));
        name.remove_prefix(length);
    }
    return result;
}

UUID deviceIDForAddress(std::string_view address) {
    // 64-bit FNV-1a once forwards and once on from there, spread over the bytes.
    std::uint64_t hash = 14695981039346656037ULL;
    UUID id;
    for (std::size_t half = 0; half < 2; ++half) {
        for (const char c : address) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
        for (std::size_t i = 0; i < 8; ++i) {
            id.bytes[half * 8 + i] = static_cast<std::uint8_t>(hash >> (56 - 8 * i));
        }
    }
    // Version 8, a scheme of one's own; RFC 9562, 5.8.
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x80);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::optional<std::string> chooseAdapter(std::vector<std::string> adapters, std::string_view wanted) {
    std::ranges::sort(adapters, comesFirst);
    if (!wanted.empty()) {
        const auto found = std::ranges::find(adapters, wanted);
        return found == adapters.end() ? std::nullopt : std::optional(*found);
    }
    if (adapters.empty()) return std::nullopt;
    return adapters.size() > 1 ? adapters[1] : adapters[0];
}

}  // namespace orbinex::test_phone
