#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The whole text of the bridge script that takes its commands from the file at this path. The path may have
/// any characters.
std::string bridgeScript(std::string_view commandFilePath);

/// The text of bridge_script.lua, with a placeholder for that path.
std::string_view bridgeScriptText();

}  // namespace orbinex
