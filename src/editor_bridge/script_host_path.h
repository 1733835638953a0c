#pragma once

namespace orbinex {

/// Where the editor's scripting host is when the editor is installed in its usual place.
inline constexpr const char* scriptHostPathOnLinux = "/opt/resolve/libs/Fusion/fuscript";

}  // namespace orbinex
