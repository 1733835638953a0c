#include "app/linux/runtime_folder.h"

#include <sys/stat.h>
#include <unistd.h>

namespace orbinex {

namespace {

constexpr mode_t ownerOnly = 0700;

bool isPrivate(const std::string& folder) {
    struct stat about {};
    // A link may be pointed elsewhere later.
    return ::lstat(folder.c_str(), &about) == 0 && S_ISDIR(about.st_mode) && about.st_uid == ::geteuid() &&
           (about.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

std::optional<std::string> privateRuntimeFolder(const std::string& sessionFolder,
                                                const std::string& fallbackParent) {
    if (sessionFolder.starts_with('/') && isPrivate(sessionFolder)) return sessionFolder;
    auto folder = fallbackParent + "/orbinex-" + std::to_string(::geteuid());
    ::mkdir(folder.c_str(), ownerOnly);
    if (!isPrivate(folder)) return std::nullopt;
    return folder;
}

}  // namespace orbinex
