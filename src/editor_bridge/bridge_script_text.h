#pragma once

#include <string_view>

namespace orbinex {

/// The text of resolve_bridge.lua, with a placeholder for the command file's path.
std::string_view bridgeScriptText();

}  // namespace orbinex
