#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The file that a command of this name starts: found in PATH when it has no slash. Empty when there is none
/// that may be started.
[[nodiscard]] std::string findProgram(std::string_view name);

}  // namespace orbinex
