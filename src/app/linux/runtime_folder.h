#pragma once

#include <optional>
#include <string>

namespace orbinex {

/// A folder for sockets and locks that belongs to this user alone: the session's (`sessionFolder`, empty when
/// there is none), else one in `fallbackParent`, made when it is not there. Nothing when neither is a real
/// folder of this user's that nobody else may write to.
[[nodiscard]] std::optional<std::string> privateRuntimeFolder(const std::string& sessionFolder,
                                                              const std::string& fallbackParent = "/tmp");

}  // namespace orbinex
