#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "base/bytes.h"

namespace orbinex {

/// A 128-bit identifier. Byte 0 is the first two hex digits of the canonical text.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    /// Reads the canonical form, 8-4-4-4-12 hex digits of either case; anything else is nothing.
    static constexpr std::optional<UUID> parse(std::string_view text) {
        if (text.size() != 36) return std::nullopt;
        UUID result;
        std::size_t position = 0;
        for (std::size_t i = 0; i < 16; ++i) {
            if (i == 4 || i == 6 || i == 8 || i == 10) {
                if (text[position++] != '-') return std::nullopt;
            }
            const int high = hexDigit(text[position++]);
            const int low = hexDigit(text[position++]);
            if (high < 0 || low < 0) return std::nullopt;
            result.bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
        }
        return result;
    }

    /// A constant written in the source; a malformed one does not compile.
    static consteval UUID literal(std::string_view text) { return parse(text).value(); }

    /// Exactly 16 bytes in canonical order; any other length is nothing.
    static std::optional<UUID> fromBytes(ByteView value);

    /// A random (version 4) identifier.
    static UUID random();
    /// The same from a caller's generator, for anything that must be replayed.
    static UUID random(std::mt19937_64& generator);

    /// The canonical form in upper case, 36 characters.
    [[nodiscard]] std::string text() const;

    friend constexpr bool operator==(const UUID&, const UUID&) = default;
    friend constexpr bool operator<(const UUID& a, const UUID& b) { return a.bytes < b.bytes; }

  private:
    static constexpr int hexDigit(char c) {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    }
};

}  // namespace orbinex

template <>
struct std::hash<orbinex::UUID> {
    std::size_t operator()(const orbinex::UUID& id) const noexcept {
        // FNV-1a, 64 bit.
        std::uint64_t h = 14695981039346656037ULL;
        for (const auto byte : id.bytes) h = (h ^ byte) * 1099511628211ULL;
        return static_cast<std::size_t>(h);
    }
};
