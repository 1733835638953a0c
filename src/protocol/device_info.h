#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/bytes.h"
#include "base/uuid.h"

namespace orbinex {

/// How a peer's protocol version stands to ours.
enum class VersionMatch {
    compatible,
    /// The peer is older than we are.
    peerOlder,
    /// The peer is newer than we are.
    peerNewer,
};

/// Only an equal version is compatible.
VersionMatch compareVersion(std::uint8_t peerVersion);

/// The iPhone's identity: the value of the info characteristic. Byte 0 is the protocol version, bytes 1 to 16
/// the identifier in the order of its canonical text, the rest the name in UTF-8.
struct DeviceInfo {
    std::uint8_t protocolVersion = 0;
    /// Stable for one iPhone.
    UUID deviceID;
    /// The display name; may be empty.
    std::string name;

    /// Nothing for fewer than 17 bytes. Broken UTF-8 in the name is repaired.
    static std::optional<DeviceInfo> decode(ByteView value);
    [[nodiscard]] Bytes encode() const;

    friend bool operator==(const DeviceInfo&, const DeviceInfo&) = default;
};

/// What an iPhone advertises of its device id, and is known by across addresses: the first three bytes as six
/// upper-case hex digits.
std::string deviceToken(const UUID& deviceID);

}  // namespace orbinex
