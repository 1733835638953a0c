#include "app/linux/desktop_opener.h"

#include <algorithm>
#include <utility>

#include "app/system_settings_urls.h"

namespace orbinex {

DesktopOpener::DesktopOpener(std::vector<std::string> desktops, std::string config, Start start)
    : desktops_(std::move(desktops)), config_(std::move(config)), start_(std::move(start)) {}

bool DesktopOpener::open(std::string_view url) {
    if (url == accessibilitySettingsUrl) return openPanel(SettingsPanel::inputControl);
    // Who may use Bluetooth is not a setting of its own here.
    if (url == bluetoothSettingsUrl || url == bluetoothPrivacySettingsUrl)
        return openPanel(SettingsPanel::bluetooth);
    return isWebAddress(url) && openAddress(std::string(url));
}

bool DesktopOpener::openPanel(SettingsPanel panel) {
    if (startFirst(panelCommands(panel, desktops_))) return true;
    // The nearest thing to settings that there are none for.
    return panel == SettingsPanel::loginItems && openFolder(config_ + "/autostart");
}

bool DesktopOpener::openFolder(const std::string& path) {
    return path.starts_with('/') && openAddress(path);
}

bool DesktopOpener::openAddress(const std::string& address) {
    return startFirst({{"xdg-open", address},
                       {"gio", "open", address},
                       {"kde-open", address},
                       {"kde-open5", address},
                       {"exo-open", address},
                       {"x-www-browser", address}});
}

bool DesktopOpener::startFirst(const std::vector<Command>& commands) {
    return std::ranges::any_of(commands, start_);
}

}  // namespace orbinex
