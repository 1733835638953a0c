#pragma once

#include <string_view>

namespace orbinex {

/// The version that a person is told, such as "1.2.0".
inline constexpr std::string_view shortVersion = ORBINEX_VERSION;
/// Which build of that version it is; whoever builds packages sets it: see ORBINEX_BUILD_VERSION of the
/// build.
inline constexpr std::string_view buildVersion = ORBINEX_BUILD_VERSION;

}  // namespace orbinex
