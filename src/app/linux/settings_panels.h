#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orbinex {

enum class SettingsPanel { bluetooth, loginItems, inputControl };

/// The command lines that open such a panel, best first: what the running desktop has for it, then what
/// works under any. `desktops` are the names in XDG_CURRENT_DESKTOP.
[[nodiscard]] std::vector<std::vector<std::string>> panelCommands(SettingsPanel panel,
                                                                  const std::vector<std::string>& desktops);

/// The names in the variable XDG_CURRENT_DESKTOP.
[[nodiscard]] std::vector<std::string> currentDesktops();

/// An address that a browser may be given: http or https, a host, and nothing but what addresses are made
/// of, at most 2,048 characters.
[[nodiscard]] bool isWebAddress(std::string_view url);

}  // namespace orbinex
