#pragma once

#include <array>
#include <cstdint>

namespace orbinex {

/// The macOS virtual key codes that can give a character: 0 to 50 without Return (36) and Tab (48), which
/// text uses by their codes, and the two extra keys of Japanese keyboards, 93 and 94. In order of preference.
inline constexpr std::array<std::uint16_t, 51> candidateKeycodes = [] {
    std::array<std::uint16_t, 51> codes{};
    std::size_t count = 0;
    for (std::uint16_t code = 0; code <= 50; ++code) {
        if (code != 36 && code != 48) codes[count++] = code;
    }
    codes[count++] = 93;
    codes[count++] = 94;
    return codes;
}();

}  // namespace orbinex
