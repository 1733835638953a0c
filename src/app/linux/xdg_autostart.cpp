#include "app/linux/xdg_autostart.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "app/linux/autostart_entry.h"
#include "app/linux/program_search.h"
#include "app/linux/small_file.h"

namespace orbinex {

namespace {

/// What is there and cannot be read is an entry too, one without anything in it.
std::optional<std::string> readEntry(const std::string& path) {
    if (auto text = readSmallFile(path)) return text;
    struct stat about {};
    return ::lstat(path.c_str(), &about) == 0 ? std::optional<std::string>("") : std::nullopt;
}

}  // namespace

XdgAutostart::XdgAutostart(Places places, std::function<bool()> openSettings)
    : places_(std::move(places)),
      file_(places_.config + "/autostart/orbinex.desktop"),
      openSettings_(std::move(openSettings)) {}

LoginItemStatus XdgAutostart::status() const {
    return autostartStatus(readEntry(file_), places_.desktops,
                           [](const std::string& program) { return !findProgram(program).empty(); });
}

LoginItemService::Failure XdgAutostart::registerItem() {
    if (status() == LoginItemStatus::requiresApproval) return std::nullopt;
    return writeSmallFile(file_, autostartText(places_.program));
}

LoginItemService::Failure XdgAutostart::unregisterItem() {
    if (::unlink(file_.c_str()) == 0 || errno == ENOENT) return std::nullopt;
    return std::generic_category().message(errno);
}

LoginItemService::Failure XdgAutostart::openSystemSettings() {
    if (openSettings_()) return std::nullopt;
    return "Nothing on this computer shows what starts at login. The entry that is turned off is " + file_;
}

void XdgAutostart::follow(const std::string& program) {
    const auto changed =
        autostartTextFollowing(program, readEntry(file_).value_or(std::string()), places_.desktops);
    if (changed) writeSmallFile(file_, *changed);
}

void XdgAutostart::repair() {
    if (status() == LoginItemStatus::notFound) follow(places_.program);
}

}  // namespace orbinex
