#pragma once

#include <string_view>

namespace orbinex {

/// The product's pages on the web. Whoever deploys the program sets them: see ORBINEX_APP_STORE_URL,
/// ORBINEX_PRIVACY_URL and ORBINEX_SUPPORT_URL of the build.
inline constexpr std::string_view appStoreUrl = ORBINEX_APP_STORE_URL;
inline constexpr std::string_view privacyPolicyUrl = ORBINEX_PRIVACY_URL;
inline constexpr std::string_view supportUrl = ORBINEX_SUPPORT_URL;

}  // namespace orbinex
