#pragma once

#include <optional>
#include <string>

namespace orbinex {

/// What the platform says of the program's start at login.
enum class LoginItemStatus {
    notRegistered = 0,
    enabled = 1,
    requiresApproval = 2,  ///< registered, but turned off in the settings of the desktop
    notFound = 3,          ///< registered, but what would be started is not there
};

/// Starts the program when the person logs in. Main thread only.
class LoginItemService {
  public:
    /// What went wrong, in words for a person; nothing when all went well.
    using Failure = std::optional<std::string>;

    LoginItemService() = default;
    LoginItemService(const LoginItemService&) = delete;
    LoginItemService& operator=(const LoginItemService&) = delete;
    virtual ~LoginItemService() = default;

    /// Read anew at every call.
    [[nodiscard]] virtual LoginItemStatus status() const = 0;
    /// Does not overrule what was turned off in the settings of the desktop.
    virtual Failure registerItem() = 0;
    virtual Failure unregisterItem() = 0;
    /// Opens the settings of the desktop for what starts at login, or the nearest thing.
    virtual Failure openSystemSettings() = 0;
};

}  // namespace orbinex
