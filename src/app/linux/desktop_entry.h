#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbinex {

// Desktop entries as the Desktop Entry Specification (1.5) has them: the key files that launchers, menus and
// the start at login read.

inline constexpr std::string_view desktopEntryGroup = "Desktop Entry";

/// The value of a key of that group, with the escapes of strings undone. Nothing when the text
/// has no such group or key. Of a key that is there twice, the first.
[[nodiscard]] std::optional<std::string> desktopEntryValue(std::string_view text, std::string_view key);
/// True for "true"; nothing as above, or for any value but "true" and "false".
[[nodiscard]] std::optional<bool> desktopEntryFlag(std::string_view text, std::string_view key);
/// The values of a list, which semicolons separate; empty as above.
[[nodiscard]] std::vector<std::string> desktopEntryList(std::string_view text, std::string_view key);

/// The arguments of a command line as the key Exec holds it; quotes that do not close end at the end.
[[nodiscard]] std::vector<std::string> execArguments(std::string_view exec);
/// The value of the key Exec that makes launchers start just these arguments.
[[nodiscard]] std::string execValue(const std::vector<std::string>& arguments);

/// The text with another value for a key of a group, in the place of the old one, or first in the group;
/// whatever else there is stays as it is. `value` is as desktopEntryValue() gives it. A text without such a
/// group stays as it is.
[[nodiscard]] std::string withDesktopEntryValue(std::string_view text, std::string_view key,
                                                std::string_view value,
                                                std::string_view group = desktopEntryGroup);

}  // namespace orbinex
