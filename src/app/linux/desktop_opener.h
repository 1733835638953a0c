#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/linux/settings_panels.h"
#include "app/url_opener.h"

namespace orbinex {

/// Opens web pages, settings and folders with the programs of the running desktop.
class DesktopOpener final : public UrlOpener {
  public:
    using Command = std::vector<std::string>;
    /// Starts a command line; false when there is no such program.
    using Start = std::function<bool(const Command&)>;

    /// `desktops` are the names in XDG_CURRENT_DESKTOP, `config` is the user's settings folder.
    DesktopOpener(std::vector<std::string> desktops, std::string config, Start start);

    bool open(std::string_view url) override;
    bool openPanel(SettingsPanel panel);
    /// An absolute path.
    bool openFolder(const std::string& path);

  private:
    bool startFirst(const std::vector<Command>& commands);
    bool openAddress(const std::string& address);

    std::vector<std::string> desktops_;
    std::string config_;
    Start start_;
};

}  // namespace orbinex
