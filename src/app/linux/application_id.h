#pragma once

namespace orbinex {

/// What the desktop knows the program by: the name of its desktop file, its icon and its windows.
inline constexpr const char* applicationId = "org.orbinex.Orbinex";

}  // namespace orbinex
