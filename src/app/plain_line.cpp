#include "app/plain_line.h"

#include <algorithm>
#include <span>

#include "base/bytes.h"
#include "base/text.h"

namespace orbinex {

namespace {

/// Not every format character: emoji are joined by them.
bool isUnsafe(char16_t unit) {
    const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    const bool isSeparator = unit == 0x2028 || unit == 0x2029;
    const bool isDirection = unit == 0x061C || unit == 0x200E || unit == 0x200F ||
                             (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
    return isControl || isSeparator || isDirection;
}

}  // namespace

std::string plainLine(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    auto units =
        utf16(repairUTF8(ByteView(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size())));
    std::ranges::replace_if(units, isUnsafe, u'?');
    return utf8(units);
}

}  // namespace orbinex
