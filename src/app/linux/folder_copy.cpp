#include "app/linux/folder_copy.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>

namespace orbinex {

namespace {

namespace fs = std::filesystem;

bool copyItem(const fs::path& from, const fs::path& to);

bool copyFolder(const fs::path& from, const fs::path& to) {
    std::error_code error;
    if (!fs::create_directory(to, error)) return false;
    for (fs::directory_iterator item(from, error), end; !error && item != end; item.increment(error)) {
        if (!copyItem(item->path(), to / item->path().filename())) return false;
    }
    if (error) return false;
    // Last, as it may forbid writing.
    fs::permissions(to, fs::status(from, error).permissions(), error);
    return !error;
}

bool copyItem(const fs::path& from, const fs::path& to) {
    std::error_code error;
    switch (fs::symlink_status(from, error).type()) {
        case fs::file_type::regular: return fs::copy_file(from, to, error);
        case fs::file_type::directory: return copyFolder(from, to);
        case fs::file_type::symlink: fs::copy_symlink(from, to, error); return !error;
        default: return false;
    }
}

/// Gives the copy its name, unless something has it.
bool takeName(const fs::path& copy, const std::string& name) {
    if (::renameat2(AT_FDCWD, copy.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) return true;
    // Not every file system can do that.
    std::error_code error;
    if (errno != EINVAL || fs::exists(fs::symlink_status(name, error))) return false;
    fs::rename(copy, name, error);
    return !error;
}

}  // namespace

bool copyWhole(const std::string& from, const std::string& to) {
    // Beside the target, so that it can take its name, and nobody takes an unfinished copy for a whole one.
    std::string folder = fs::path(to).parent_path() / ".orbinex-XXXXXX";
    if (!::mkdtemp(folder.data())) return false;
    const fs::path copy = fs::path(folder) / "copy";
    const bool isCopied = copyItem(from, copy) && takeName(copy, to);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    return isCopied;
}

}  // namespace orbinex
