#include "app/linux/user_folders.h"

#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace orbinex {

namespace {

std::string absoluteVariable(const char* name) {
    const char* const value = std::getenv(name);
    if (!value || *value != '/') return {};
    std::string path = value;
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path;
}

std::string homeFolder() {
    if (auto home = absoluteVariable("HOME"); !home.empty()) return home;
    const passwd* const user = ::getpwuid(::getuid());
    return user && user->pw_dir && *user->pw_dir == '/' ? user->pw_dir : "/";
}

std::string orElse(std::string path, std::string usual) {
    return path.empty() ? std::move(usual) : std::move(path);
}

}  // namespace

UserFolders UserFolders::fromEnvironment() {
    UserFolders folders;
    folders.home = homeFolder();
    folders.config = orElse(absoluteVariable("XDG_CONFIG_HOME"), folders.home + "/.config");
    folders.data = orElse(absoluteVariable("XDG_DATA_HOME"), folders.home + "/.local/share");
    return folders;
}

}  // namespace orbinex
