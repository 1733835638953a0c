#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/login_item_service.h"

namespace orbinex {

/// The start at login that desktops on Linux have: a file in the autostart folder of the user's settings.
class XdgAutostart final : public LoginItemService {
  public:
    struct Places {
        /// The user's settings folder; the autostart folder need not exist there.
        std::string config;
        /// What is started at login, an absolute path.
        std::string program;
        /// The names in XDG_CURRENT_DESKTOP.
        std::vector<std::string> desktops;
    };

    /// `openSettings` is false when nothing opens them.
    XdgAutostart(Places places, std::function<bool()> openSettings);

    [[nodiscard]] LoginItemStatus status() const override;
    Failure registerItem() override;
    Failure unregisterItem() override;
    Failure openSystemSettings() override;

    /// From now on an entry that is on starts this copy of the program, unless somebody has changed what it
    /// starts.
    void follow(const std::string& program);
    /// The same for this program, where what the entry starts is gone.
    void repair();

  private:
    Places places_;
    std::string file_;
    std::function<bool()> openSettings_;
};

}  // namespace orbinex
