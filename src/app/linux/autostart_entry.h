#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/login_item_service.h"

namespace orbinex {

/// The argument that tells a launch at login from one by a person.
inline constexpr const char* loginLaunchArgument = "--at-login";

/// What a file of the autostart folder amounts to: `text` is what it holds, nothing when there is none.
/// Desktops turn an entry off in place; one that is off, or is not for the running desktop (`desktops`, the
/// names in XDG_CURRENT_DESKTOP), waits for approval. `isProgram` tells whether a path is a program that can
/// be started.
[[nodiscard]] LoginItemStatus autostartStatus(const std::optional<std::string>& text,
                                              const std::vector<std::string>& desktops,
                                              const std::function<bool(const std::string& path)>& isProgram);

/// The text of an entry that starts this program at login.
[[nodiscard]] std::string autostartText(const std::string& program);

/// The text of an entry that is on and starts another copy of the program, changed to start this one. Nothing
/// when there is nothing to change: it starts this one, is off, or starts what somebody has made of it.
[[nodiscard]] std::optional<std::string> autostartTextFollowing(const std::string& program,
                                                                std::string_view text,
                                                                const std::vector<std::string>& desktops);

}  // namespace orbinex
