#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "base/bytes.h"
#include "protocol/daw_command.h"
#include "protocol/meter_packet.h"
#include "protocol/session_records.h"

namespace orbinex {

/// One value of the control characteristic, in either direction. Byte 0 is the type, the rest the payload.
struct ControlMessage {
    /// The computer's greeting.
    struct Hello {
        std::uint8_t protocolVersion = 0;
        std::string macName;
        friend bool operator==(const Hello&, const Hello&) = default;
    };
    /// The application in front on the computer.
    struct ActiveApp {
        std::string bundleID;
        friend bool operator==(const ActiveApp&, const ActiveApp&) = default;
    };
    /// The iPhone asks to end the session.
    struct DisconnectRequest {
        friend bool operator==(const DisconnectRequest&, const DisconnectRequest&) = default;
    };
    /// The computer ends the session.
    struct Goodbye {
        friend bool operator==(const Goodbye&, const Goodbye&) = default;
    };

    using Value = std::variant<Hello, ActiveApp, SessionTelemetry, DAWHeader, DAWTrackState, DAWCommand,
                               DAWMeterPacket, DisconnectRequest, Goodbye>;
    Value value;

    /// Nothing for an empty value, an unknown type, a payload that is too short or has too few fields, an
    /// unknown command, and an application identifier that is empty once control characters are taken off
    /// both ends. Broken UTF-8 is repaired; numbers that do not parse take their field's default.
    static std::optional<ControlMessage> decode(ByteView value);
    /// The complete value to write or to notify.
    [[nodiscard]] Bytes encode() const;

    friend bool operator==(const ControlMessage&, const ControlMessage&) = default;
};

/// The most bytes of a name or application identifier that a message carries.
inline constexpr std::size_t maximumIdentityBytes = 64;

/// The name to greet with: the computer's own, or "Mac" when it has none.
std::string macName(std::string_view computerName);

/// Our greeting: our protocol version and the first 64 bytes of the name, wherever in a character that cuts.
Bytes encodeHello(std::string_view macName);
/// The first 64 bytes of the identifier, cut in the same way.
Bytes encodeActiveApp(std::string_view bundleID);
/// A single byte.
Bytes encodeGoodbye();

}  // namespace orbinex
