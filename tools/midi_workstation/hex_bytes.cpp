#include "midi_workstation/hex_bytes.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace orbinex {

std::string hexText(ByteView bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const auto byte : bytes) {
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

std::optional<Bytes> bytesFromHex(std::string_view text) {
    constexpr std::size_t width = 2;
    Bytes bytes;
    while (!text.empty()) {
        const auto digits = text.substr(0, width);
        std::uint8_t byte = 0;
        const auto* const end = digits.data() + digits.size();
        const auto read = std::from_chars(digits.data(), end, byte, 16);
        if (digits.size() != width || read.ec != std::errc() || read.ptr != end) return std::nullopt;
        bytes.push_back(byte);
        text.remove_prefix(width);
        if (text.starts_with(' ')) text.remove_prefix(1);
    }
    if (bytes.empty()) return std::nullopt;
    return bytes;
}

}  // namespace orbinex
