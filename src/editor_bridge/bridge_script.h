#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The whole text of the bridge script (resolve_bridge.lua) that takes its commands from the file at this
/// path. The path may have any characters.
std::string bridgeScript(std::string_view commandFilePath);

}  // namespace orbinex
