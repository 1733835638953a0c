#pragma once

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

#include "base/bytes.h"

namespace orbinex::test {

/// Bytes as a transcript shows them: two hex digits each, separated by spaces.
inline Bytes hex(std::string_view transcript) {
    Bytes bytes;
    std::istringstream words{std::string(transcript)};
    for (std::string word; words >> word;)
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
    return bytes;
}

/// The bytes of a text, after a type byte.
inline Bytes typed(std::uint8_t type, std::string_view text) {
    Bytes bytes(1 + text.size(), type);
    std::ranges::copy(text, bytes.begin() + 1);
    return bytes;
}

/// The text that follows a type byte.
inline std::string textAfterType(const Bytes& message) {
    return {message.begin() + (message.empty() ? 0 : 1), message.end()};
}

}  // namespace orbinex::test
