#include "editor_bridge/linux/tmp_command_file.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include "editor_bridge/linux/descriptor.h"

namespace orbinex {

namespace {

constexpr mode_t ownersOnly = S_IRUSR | S_IWUSR;
/// A line is written again as often as its file is taken meanwhile, but not for ever.
constexpr int mostRounds = 1000;

bool isOurs(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && status.st_nlink == 1;
}

/// Taken and removed between being found and being looked at.
bool isRemoved(const struct stat& status) {
    return status.st_nlink == 0;
}

bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Gives it these rights whatever the umask is.
bool isForUsOnly(int file, const struct stat& status) {
    return (status.st_mode & ALLPERMS) == ownersOnly || ::fchmod(file, ownersOnly) == 0;
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto size = ::write(file, bytes.data(), bytes.size());
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(size));
    }
    return true;
}

}  // namespace

void TmpCommandFile::append(std::string_view line) {
    constexpr std::string_view ends("\n\r\0", 3);
    std::string bytes(line.substr(0, line.find_first_of(ends)));
    if (bytes.empty() || bytes.size() >= mostWaiting) return;
    bytes += '\n';
    for (int round = 0; round < mostRounds; ++round) {
        if (addToFile(bytes) == Result::done || addToNewFile(bytes) == Result::done) return;
    }
}

TmpCommandFile::Result TmpCommandFile::addToFile(std::string_view bytes) const {
    // Looked at before it is opened, as opening a device or a pipe has effects of its own.
    struct stat status {};
    if (::lstat(path_.c_str(), &status) != 0) return errno == ENOENT ? Result::absent : Result::done;
    if (isRemoved(status)) return Result::absent;
    if (!isOurs(status)) return Result::done;
    if (static_cast<std::size_t>(status.st_size) + bytes.size() > mostWaiting) {
        return ::unlink(path_.c_str()) == 0 || errno == ENOENT ? Result::absent : Result::done;
    }
    const Descriptor file(
        ::open(path_.c_str(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) return errno == ENOENT ? Result::absent : Result::done;
    if (::fstat(file.get(), &status) != 0) return Result::done;
    if (isRemoved(status)) return Result::absent;
    if (!isOurs(status)) return Result::done;
    return write(file.get(), status, bytes);
}

TmpCommandFile::Result TmpCommandFile::addToNewFile(std::string_view bytes) const {
    const Descriptor file(
        ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownersOnly));
    if (!file) return errno == EEXIST ? Result::absent : Result::done;
    struct stat status {};
    return ::fstat(file.get(), &status) == 0 ? write(file.get(), status, bytes) : Result::done;
}

TmpCommandFile::Result TmpCommandFile::write(int file, const struct stat& status,
                                             std::string_view bytes) const {
    if (!isForUsOnly(file, status)) return Result::done;
    if (!writeAll(file, bytes)) {
        // Not half a command; the next one must begin a line.
        [[maybe_unused]] const int result = ::ftruncate(file, status.st_size);
        return Result::done;
    }
    // If it was taken meanwhile, perhaps it had been read before the line came.
    struct stat now {};
    if (::lstat(path_.c_str(), &now) != 0) return errno == ENOENT ? Result::absent : Result::done;
    return isSameFile(status, now) ? Result::done : Result::absent;
}

}  // namespace orbinex
