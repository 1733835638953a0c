#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/bytes.h"

namespace orbinex {

/// "E0 00 40"
std::string hexText(ByteView bytes);
/// Bytes of two hexadecimal digits, with spaces between them; nothing for anything else and for no bytes.
std::optional<Bytes> bytesFromHex(std::string_view text);

}  // namespace orbinex
