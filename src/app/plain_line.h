#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The text as one line that is safe to print and to show: control characters, line separators and what
/// reverses the direction of writing are question marks. Names come from the air, and could else move the
/// cursor or pretend to be other lines. Bytes that are not UTF-8 are repaired.
std::string plainLine(std::string_view text);

}  // namespace orbinex
