#include "protocol/device_info.h"

#include "base/text.h"
#include "protocol/gatt.h"

namespace orbinex {

namespace {

constexpr std::size_t identifierOffset = 1;
constexpr std::size_t nameOffset = 17;

}  // namespace

VersionMatch compareVersion(std::uint8_t peerVersion) {
    if (peerVersion < OrbinexProtocol::protocolVersion) return VersionMatch::peerOlder;
    if (peerVersion > OrbinexProtocol::protocolVersion) return VersionMatch::peerNewer;
    return VersionMatch::compatible;
}

std::optional<DeviceInfo> DeviceInfo::decode(ByteView value) {
    if (value.size() < nameOffset) return std::nullopt;
    const auto identifier = UUID::fromBytes(value.subspan(identifierOffset, nameOffset - identifierOffset));
    if (!identifier) return std::nullopt;
    return DeviceInfo{value[0], *identifier, repairUTF8(value.subspan(nameOffset))};
}

Bytes DeviceInfo::encode() const {
    Bytes value;
    value.reserve(nameOffset + name.size());
    value.push_back(protocolVersion);
    value.insert(value.end(), deviceID.bytes.begin(), deviceID.bytes.end());
    value.insert(value.end(), name.begin(), name.end());
    return value;
}

std::string deviceToken(const UUID& deviceID) {
    return deviceID.text().substr(0, 6);
}

}  // namespace orbinex
