#include "editor_bridge/linux/tmp_command_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <optional>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>

#include "editor_bridge/linux/descriptor.h"

namespace orbinex {

namespace {

constexpr mode_t ownersOnly = S_IRUSR | S_IWUSR;
/// A line is written again as often as another writer comes between at most.
constexpr int mostRounds = 16;

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

/// A name in the same folder that nobody can foresee.
std::optional<std::string> temporaryPath(const std::string& path) {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof number, 0) != static_cast<ssize_t>(sizeof number)) return std::nullopt;
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(number));
    return path + "." + digits.data();
}

}  // namespace

void TmpCommandFile::append(std::string_view line) {
    constexpr std::string_view ends("\n\r\0", 3);
    std::string bytes(line.substr(0, line.find_first_of(ends)));
    if (bytes.empty() || bytes.size() >= mostWaiting) return;
    bytes += '\n';
    for (int round = 0; round < mostRounds; ++round) {
        auto result = addToFile(bytes);
        if (result == Result::absent) result = makeFile(bytes);
        if (result != Result::occupied) return;
    }
}

TmpCommandFile::Result TmpCommandFile::addToFile(std::string_view bytes) const {
    // Looked at before it is opened, as opening a device or a pipe has effects of its own.
    struct stat status {};
    if (::lstat(path_.c_str(), &status) != 0) return errno == ENOENT ? Result::absent : Result::lost;
    if (isRemoved(status)) return Result::absent;
    if (!isOurs(status)) return Result::lost;
    if (static_cast<std::size_t>(status.st_size) + bytes.size() > mostWaiting) {
        return ::unlink(path_.c_str()) == 0 || errno == ENOENT ? Result::absent : Result::lost;
    }
    const Descriptor file(
        ::open(path_.c_str(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) return errno == ENOENT ? Result::absent : Result::lost;
    if (::fstat(file.get(), &status) != 0) return Result::lost;
    if (isRemoved(status)) return Result::absent;
    if (!isOurs(status) || !isForUsOnly(file.get(), status)) return Result::lost;
    if (!writeAll(file.get(), bytes)) {
        // Not half a command; the next one must begin a line.
        [[maybe_unused]] const int result = ::ftruncate(file.get(), status.st_size);
        return Result::lost;
    }
    // If it was taken meanwhile, perhaps it had been read before the line came.
    struct stat now {};
    if (::lstat(path_.c_str(), &now) != 0) return errno == ENOENT ? Result::absent : Result::lost;
    return isSameFile(status, now) ? Result::added : Result::occupied;
}

TmpCommandFile::Result TmpCommandFile::makeFile(std::string_view bytes) const {
    const auto temporary = temporaryPath(path_);
    if (!temporary) return Result::lost;
    const Descriptor file(
        ::open(temporary->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownersOnly));
    if (!file) return Result::lost;
    if (::fchmod(file.get(), ownersOnly) == 0 && writeAll(file.get(), bytes)) {
        if (::renameat2(AT_FDCWD, temporary->c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) == 0)
            return Result::added;
    } else {
        errno = EIO;
    }
    const bool isOccupied = errno == EEXIST;
    ::unlink(temporary->c_str());
    return isOccupied ? Result::occupied : Result::lost;
}

}  // namespace orbinex
