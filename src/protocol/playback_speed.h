#pragma once

#include <string_view>

namespace orbinex::PlaybackSpeed {

// The labels under which play speeds are shown and sent; the fast ones begin at 1.4 times the normal speed.
inline constexpr std::string_view stopped = "0X";
inline constexpr std::string_view forward = "1X";
inline constexpr std::string_view fastForward = "+2X";
inline constexpr std::string_view backward = "-1X";
inline constexpr std::string_view fastBackward = "-2X";

}  // namespace orbinex::PlaybackSpeed
