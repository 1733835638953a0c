#pragma once

#include <cstdint>
#include <string_view>

#include "base/bytes.h"

namespace orbinex::OrbinexProtocol {

/// Byte 0 of a control message.
enum class MessageType : std::uint8_t {
    hello = 0x10,
    disconnectRequest = 0x11,
    goodbye = 0x12,
    activeApp = 0x13,
    sessionTelemetry = 0x14,
    /// The header or one track, told apart by the first field.
    sessionRecord = 0x15,
    dawCommand = 0x16,
    dawMeter = 0x17,
};

/// A control message: the type byte and a text.
inline Bytes textMessage(MessageType type, std::string_view text = {}) {
    Bytes message;
    message.reserve(1 + text.size());
    message.push_back(static_cast<std::uint8_t>(type));
    message.insert(message.end(), text.begin(), text.end());
    return message;
}

}  // namespace orbinex::OrbinexProtocol
