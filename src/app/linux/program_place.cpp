#include "app/linux/program_place.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/linux/application_id.h"
#include "app/linux/real_path.h"
#include "app/relocation_rules.h"

namespace orbinex {

namespace {

using namespace std::string_view_literals;

/// Where systems and their package managers put programs.
constexpr std::array systemFolders{"/usr/"sv, "/opt/"sv, "/bin/"sv,  "/lib/"sv, "/lib64/"sv,   "/nix/"sv,
                                   "/gnu/"sv, "/app/"sv, "/snap/"sv, "/var/"sv, "/run/host/"sv};

bool isOfTheSystem(std::string_view path) {
    return std::ranges::any_of(systemFolders, [&](auto folder) { return path.starts_with(folder); });
}

std::string parent(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

bool isFolderOfItsOwn(const std::string& root, const ProgramFacts& facts) {
    return lastPathComponent(root).starts_with("orbinex") && !facts.exists(root + "/CMakeCache.txt") &&
           facts.exists(root + "/share/applications/" + applicationId + ".desktop");
}

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string ownExecutable() {
    std::array<char, PATH_MAX> path{};
    const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0) return {};
    std::string file(path.data(), static_cast<std::size_t>(length));
    // What an upgrade leaves of a program that runs.
    constexpr std::string_view gone = " (deleted)";
    if (file.ends_with(gone)) file.resize(file.size() - gone.size());
    return file;
}

}  // namespace

ProgramPlace programPlace(const ProgramFacts& facts) {
    const std::string folder = parent(facts.executable);
    ProgramPlace place{facts.executable, std::nullopt, parent(folder)};
    if (facts.imageFile.starts_with('/') && facts.imageFolder.starts_with('/') &&
        facts.executable.starts_with(facts.imageFolder + "/")) {
        place.program = facts.imageFile;
        if (!isOfTheSystem(facts.imageFile)) place.bundle = facts.imageFile;
    } else if (folder.ends_with("/bin") && !isOfTheSystem(facts.executable) &&
               isFolderOfItsOwn(place.root, facts)) {
        place.bundle = place.root;
    }
    return place;
}

ProgramPlace ownPlace() {
    return programPlace({.executable = ownExecutable(),
                         .imageFile = realPath(variable("APPIMAGE")),
                         .imageFolder = realPath(variable("APPDIR")),
                         .exists = [](const std::string& path) {
                             struct stat about {};
                             return ::stat(path.c_str(), &about) == 0;
                         }});
}

}  // namespace orbinex
