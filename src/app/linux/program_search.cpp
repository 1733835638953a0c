#include "app/linux/program_search.h"

#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

#include "base/text.h"

namespace orbinex {

namespace {

bool isProgram(const std::string& path) {
    struct stat about {};
    return ::stat(path.c_str(), &about) == 0 && S_ISREG(about.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::string findProgram(std::string_view name) {
    if (name.empty()) return {};
    if (name.find('/') != std::string_view::npos)
        return isProgram(std::string(name)) ? std::string(name) : std::string();
    const char* const path = std::getenv("PATH");
    for (const auto folder : split(path ? path : "/usr/bin:/bin", ':')) {
        // Not the present folder, whatever PATH says.
        if (!folder.starts_with('/')) continue;
        if (auto file = std::string(folder) + "/" + std::string(name); isProgram(file)) return file;
    }
    return {};
}

}  // namespace orbinex
