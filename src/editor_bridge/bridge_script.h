#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The whole text of the bridge script that takes its commands from the file at this path.
std::string bridgeScript(std::string_view commandFilePath);

}  // namespace orbinex
