#include "editor_bridge/linux/desktop_files.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/text.h"
#include "editor_bridge/linux/descriptor.h"

namespace orbinex {

namespace fs = std::filesystem;

namespace {

std::string environment(const char* name, const std::string& otherwise = {}) {
    const char* value = std::getenv(name);
    return value && *value ? value : otherwise;
}

/// At most `limit` bytes of an ordinary file; empty for anything else, which is not waited for either.
std::string readFile(const fs::path& path, std::size_t limit) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    std::string text(std::min(limit, static_cast<std::size_t>(status.st_size)), '\0');
    const auto size = ::read(file.get(), text.data(), text.size());
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return text;
}

fs::file_time_type changeOf(const fs::path& folder) {
    std::error_code error;
    const auto changed = fs::last_write_time(folder, error);
    return error ? fs::file_time_type::min() : changed;
}

}  // namespace

DesktopFiles::DesktopFiles(std::vector<fs::path> dataFolders, std::string locale)
    : dataFolders_(std::move(dataFolders)), locale_(std::move(locale)) {
    readAll();
}

DesktopFiles DesktopFiles::ofSession() {
    std::vector<fs::path> folders{environment("XDG_DATA_HOME", environment("HOME") + "/.local/share")};
    const std::string shared = environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    for (const auto folder : split(shared, ':')) folders.emplace_back(folder);
    // Others than absolute ones are to be passed over.
    std::erase_if(folders, [](const auto& folder) { return !folder.is_absolute(); });
    return {std::move(folders), environment("LC_ALL", environment("LC_MESSAGES", environment("LANG")))};
}

void DesktopFiles::readAll() {
    folders_.clear();
    files_.clear();
    byID_.clear();
    byWindowClass_.clear();
    byProgram_.clear();
    for (const auto& folder : dataFolders_) readFolder(folder / "applications", "", maxDepth);
}

void DesktopFiles::readFolder(const fs::path& folder, const std::string& prefix, int depth) {
    if (depth == 0 || files_.size() >= maxFiles || folders_.size() >= maxFiles) return;
    folders_.push_back({folder, changeOf(folder)});
    std::error_code error;
    std::vector<fs::path> entries;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) {
        if (entries.size() == maxFiles) break;
        entries.push_back(i->path());
    }
    std::ranges::sort(entries);
    for (const auto& path : entries) {
        if (path.extension() != ".desktop") {
            if (fs::is_directory(path, error))
                readFolder(path, prefix + path.filename().string() + "-", depth - 1);
            continue;
        }
        if (files_.size() == maxFiles) return;
        DesktopFile file = parseDesktopFile(readFile(path, maxFileSize), locale_);
        const std::string id = prefix + path.stem().string();
        file.id = repairUTF8({reinterpret_cast<const std::uint8_t*>(id.data()), id.size()});
        add(std::move(file));
    }
}

void DesktopFiles::add(DesktopFile file) {
    const std::size_t index = files_.size();
    // One in a more important folder replaces it, also one that only says that there is none.
    if (!byID_.emplace(lowercased(file.id), index).second) return;
    if (file.isApplication) {
        if (!file.windowClass.empty()) byWindowClass_.emplace(lowercased(file.windowClass), index);
        const auto [place, isFirst] = byProgram_.emplace(lowercased(file.program), index);
        if (!isFirst || file.program.empty()) place->second.reset();
    }
    files_.push_back(std::move(file));
}

bool DesktopFiles::haveFoldersChanged() const {
    return std::ranges::any_of(folders_,
                               [](const Folder& folder) { return changeOf(folder.path) != folder.changed; });
}

const DesktopFile* DesktopFiles::lookUp(const Index& index, const std::string& name) const {
    const auto found = index.find(lowercased(name));
    if (found == index.end() || !found->second) return nullptr;
    const DesktopFile& file = files_[*found->second];
    return file.isApplication ? &file : nullptr;
}

const DesktopFile* DesktopFiles::find(std::span<const std::string> names, const std::string& program) {
    if (haveFoldersChanged()) readAll();
    for (const Index* index : {&byWindowClass_, &byID_, &byProgram_}) {
        for (const auto& name : names) {
            if (const auto* file = lookUp(*index, name)) return file;
        }
    }
    return lookUp(byProgram_, program);
}

}  // namespace orbinex
