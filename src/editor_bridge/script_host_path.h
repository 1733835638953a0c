#pragma once

namespace orbinex {

/// Where the editor's scripting host is when the editor is installed in its usual place.
inline constexpr const char* scriptHostPathOnMac =
    "/Applications/DaVinci Resolve/DaVinci Resolve.app/Contents/Libraries/Fusion/fuscript";
inline constexpr const char* scriptHostPathOnLinux = "/opt/resolve/libs/Fusion/fuscript";

}  // namespace orbinex
