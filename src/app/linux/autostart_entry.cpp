#include "app/linux/autostart_entry.h"

#include <algorithm>

#include "app/linux/application_id.h"
#include "app/linux/desktop_entry.h"

namespace orbinex {

namespace {

bool isNamed(const std::vector<std::string>& names, const std::vector<std::string>& desktops) {
    return std::ranges::any_of(
        desktops, [&](const auto& desktop) { return std::ranges::find(names, desktop) != names.end(); });
}

bool isTurnedOff(std::string_view text, const std::vector<std::string>& desktops) {
    if (desktopEntryFlag(text, "Hidden") == true) return true;
    if (desktopEntryFlag(text, "X-GNOME-Autostart-enabled") == false) return true;
    if (desktopEntryFlag(text, "X-MATE-Autostart-enabled") == false) return true;
    const auto only = desktopEntryList(text, "OnlyShowIn");
    return (!only.empty() && !isNamed(only, desktops)) ||
           isNamed(desktopEntryList(text, "NotShowIn"), desktops);
}

/// The program that an entry starts as this program writes it; nothing when somebody has changed what it
/// does.
std::optional<std::string> ownProgram(std::string_view text) {
    const auto arguments = execArguments(desktopEntryValue(text, "Exec").value_or(std::string()));
    if (arguments.size() != 2 || !arguments[0].starts_with('/') || arguments[1] != loginLaunchArgument)
        return std::nullopt;
    return arguments[0];
}

std::string starting(const std::string& program, std::string_view text) {
    return withDesktopEntryValue(withDesktopEntryValue(text, "TryExec", program), "Exec",
                                 execValue({program, loginLaunchArgument}));
}

}  // namespace

LoginItemStatus autostartStatus(const std::optional<std::string>& text,
                                const std::vector<std::string>& desktops,
                                const std::function<bool(const std::string&)>& isProgram) {
    if (!text) return LoginItemStatus::notRegistered;
    if (isTurnedOff(*text, desktops)) return LoginItemStatus::requiresApproval;
    const auto arguments = execArguments(desktopEntryValue(*text, "Exec").value_or(std::string()));
    const auto condition = desktopEntryValue(*text, "TryExec");
    const bool isThere =
        !arguments.empty() && isProgram(arguments.front()) && (!condition || isProgram(*condition));
    return isThere ? LoginItemStatus::enabled : LoginItemStatus::notFound;
}

std::string autostartText(const std::string& program) {
    return starting(program, std::string("[Desktop Entry]\nType=Application\nName=Orbinex\nIcon=") +
                                 applicationId + "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
}

std::optional<std::string> autostartTextFollowing(const std::string& program, std::string_view text,
                                                  const std::vector<std::string>& desktops) {
    const auto former = ownProgram(text);
    if (!former || *former == program || isTurnedOff(text, desktops)) return std::nullopt;
    return starting(program, text);
}

}  // namespace orbinex
