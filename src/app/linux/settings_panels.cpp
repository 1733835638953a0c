#include "app/linux/settings_panels.h"

#include <algorithm>
#include <cstdlib>

#include "base/text.h"

namespace orbinex {

namespace {

using Panel = SettingsPanel;

struct Row {
    /// As XDG_CURRENT_DESKTOP names it; empty for programs that any desktop may have.
    std::string_view desktop;
    Panel panel;
    std::vector<std::string> command;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all{
        {"GNOME", Panel::bluetooth, {"gnome-control-center", "bluetooth"}},
        {"GNOME", Panel::loginItems, {"gnome-tweaks"}},
        {"GNOME", Panel::loginItems, {"gnome-session-properties"}},
        {"GNOME", Panel::inputControl, {"gnome-control-center", "universal-access"}},
        {"Unity", Panel::bluetooth, {"unity-control-center", "bluetooth"}},
        {"Unity", Panel::loginItems, {"gnome-session-properties"}},
        {"Unity", Panel::inputControl, {"unity-control-center", "universal-access"}},
        {"Budgie", Panel::bluetooth, {"budgie-control-center", "bluetooth"}},
        {"Budgie", Panel::loginItems, {"budgie-desktop-settings"}},
        {"Budgie", Panel::inputControl, {"budgie-control-center", "universal-access"}},
        {"KDE", Panel::bluetooth, {"systemsettings", "kcm_bluetooth"}},
        {"KDE", Panel::bluetooth, {"systemsettings5", "kcm_bluetooth"}},
        {"KDE", Panel::loginItems, {"systemsettings", "kcm_autostart"}},
        {"KDE", Panel::loginItems, {"systemsettings5", "kcm_autostart"}},
        {"KDE", Panel::inputControl, {"systemsettings", "kcm_access"}},
        {"KDE", Panel::inputControl, {"systemsettings5", "kcm_access"}},
        {"XFCE", Panel::loginItems, {"xfce4-session-settings"}},
        {"XFCE", Panel::inputControl, {"xfce4-accessibility-settings"}},
        {"MATE", Panel::loginItems, {"mate-session-properties"}},
        {"MATE", Panel::inputControl, {"mate-at-properties"}},
        {"X-Cinnamon", Panel::loginItems, {"cinnamon-settings", "startup"}},
        {"X-Cinnamon", Panel::inputControl, {"cinnamon-settings", "universal-access"}},
        {"LXQt", Panel::loginItems, {"lxqt-config-session"}},
        {"LXQt", Panel::inputControl, {"lxqt-config"}},
        {"LXDE", Panel::loginItems, {"lxsession-edit"}},
        {"LXDE", Panel::inputControl, {"lxinput"}},
        {"", Panel::bluetooth, {"blueman-manager"}},
        {"", Panel::bluetooth, {"blueberry"}},
        {"", Panel::bluetooth, {"systemsettings", "kcm_bluetooth"}},
        {"", Panel::bluetooth, {"systemsettings5", "kcm_bluetooth"}},
        {"", Panel::inputControl, {"systemsettings", "kcm_access"}},
        {"", Panel::inputControl, {"systemsettings5", "kcm_access"}},
    };
    return all;
}

/// RFC 3986: what an address may hold. Anything else has to be percent-encoded.
bool isAddressCharacter(char c) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    const bool isDigit = c >= '0' && c <= '9';
    return isLetter || isDigit ||
           std::string_view("-._~:/?#[]@!$&'()*+,;=%").find(c) != std::string_view::npos;
}

}  // namespace

std::vector<std::vector<std::string>> panelCommands(SettingsPanel panel,
                                                    const std::vector<std::string>& desktops) {
    std::vector<std::vector<std::string>> commands;
    const auto take = [&](std::string_view desktop) {
        for (const auto& row : rows()) {
            if (row.desktop == desktop && row.panel == panel) commands.push_back(row.command);
        }
    };
    for (const auto& desktop : desktops) {
        if (!desktop.empty()) take(desktop);
    }
    take({});
    return commands;
}

std::vector<std::string> currentDesktops() {
    const char* const value = std::getenv("XDG_CURRENT_DESKTOP");
    std::vector<std::string> names;
    for (const auto name : split(value ? value : "", ':')) {
        if (!name.empty()) names.emplace_back(name);
    }
    return names;
}

bool isWebAddress(std::string_view url) {
    constexpr std::size_t longest = 2048;
    if (url.size() > longest || !std::ranges::all_of(url, isAddressCharacter)) return false;
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (!url.starts_with(scheme)) continue;
        const auto host = url.substr(scheme.size(), url.find_first_of("/?#", scheme.size()) - scheme.size());
        return !host.empty();
    }
    return false;
}

}  // namespace orbinex
