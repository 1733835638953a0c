#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/bytes.h"

namespace orbinex::test {

/// A message of Open Sound Control, the other way to hold Ardour's faders.
struct OscMessage {
    using Argument = std::variant<std::int32_t, float>;

    std::string address;
    std::vector<Argument> arguments;

    [[nodiscard]] Bytes encode() const;
    /// Nothing for other than messages, and for arguments that are not numbers of 32 bits.
    static std::optional<OscMessage> decode(ByteView bytes);
};

}  // namespace orbinex::test
