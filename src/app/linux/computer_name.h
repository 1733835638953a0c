#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The name that the user has given this computer, else its host name; UTF-8, empty when it has neither.
std::string computerName();

/// The pretty host name in the text of a machine-info file (shell-like assignments, see machine-info(5)),
/// empty when there is none.
std::string prettyHostname(std::string_view machineInfo);

}  // namespace orbinex
