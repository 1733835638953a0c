#include "audio/linux/posix_media_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace orbinex {

namespace {

constexpr auto furthestOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

/// File systems whose files are the kernel's answers, made up as they are read.
constexpr std::array<unsigned long, 10> kernelFileSystems{
    PROC_SUPER_MAGIC,    SYSFS_MAGIC,      DEBUGFS_MAGIC,  TRACEFS_MAGIC,  CGROUP_SUPER_MAGIC,
    CGROUP2_SUPER_MAGIC, SECURITYFS_MAGIC, EFIVARFS_MAGIC, PSTOREFS_MAGIC, BPF_FS_MAGIC};

unsigned long fileSystemOf(int descriptor) {
    struct statfs about {};
    return ::fstatfs(descriptor, &about) == 0 ? static_cast<unsigned long>(about.f_type) : 0;
}

bool isOrdinary(const struct stat& about) {
    return S_ISREG(about.st_mode);
}

bool isMediaFile(int descriptor) {
    struct stat about {};
    return ::fstat(descriptor, &about) == 0 && isOrdinary(about) &&
           std::ranges::find(kernelFileSystems, fileSystemOf(descriptor)) == kernelFileSystems.end();
}

/// True when some are left for the rest of the program, as a clip of many segments may want many: the lowest
/// one that is free is always given.
bool leavesDescriptors(int descriptor) {
    const long most = ::sysconf(_SC_OPEN_MAX);
    return most < 0 || descriptor < most - most / 4;
}

/// Negative on an error. `flags` as preadv2 takes them.
ssize_t readOnce(int descriptor, std::uint64_t offset, std::span<std::uint8_t> bytes, int flags) {
    const iovec room{bytes.data(), bytes.size()};
    ssize_t count = 0;
    do {
        count = ::preadv2(descriptor, &room, 1, static_cast<off_t>(offset), flags);
    } while (count < 0 && errno == EINTR);
    return count;
}

std::size_t readAll(int descriptor, std::uint64_t offset, std::span<std::uint8_t> bytes, int flags) {
    std::size_t done = 0;
    while (done < bytes.size() && offset + done <= furthestOffset) {
        const auto count = readOnce(descriptor, offset + done, bytes.subspan(done), flags);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

PosixMediaFile::Access accessTo(int descriptor) {
    const auto fileSystem = fileSystemOf(descriptor);
    if (fileSystem == TMPFS_MAGIC || fileSystem == RAMFS_MAGIC) return PosixMediaFile::Access::memory;
    std::array<std::uint8_t, 1> byte{};
    if (readOnce(descriptor, 0, byte, RWF_NOWAIT) < 0 && errno != EAGAIN) return PosixMediaFile::Access::none;
    return PosixMediaFile::Access::pageCache;
}

}  // namespace

std::unique_ptr<PosixMediaFile> PosixMediaFile::open(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) return nullptr;
    // Looked at before as well: to open a device may have an effect.
    struct stat about {};
    if (::stat(path.c_str(), &about) != 0 || !isOrdinary(about)) return nullptr;
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return nullptr;
    if (!leavesDescriptors(descriptor) || !isMediaFile(descriptor)) {
        ::close(descriptor);
        return nullptr;
    }
    // Only opening must not block; a program's file system might make reading fail for this.
    ::fcntl(descriptor, F_SETFL, 0);
    return std::unique_ptr<PosixMediaFile>(new PosixMediaFile(descriptor));
}

PosixMediaFile::PosixMediaFile(int descriptor) : descriptor_(descriptor), access_(accessTo(descriptor)) {}

PosixMediaFile::~PosixMediaFile() {
    ::close(descriptor_);
}

std::optional<std::uint64_t> PosixMediaFile::size() {
    struct stat about {};
    if (::fstat(descriptor_, &about) != 0 || about.st_size < 0) return std::nullopt;
    return static_cast<std::uint64_t>(about.st_size);
}

std::size_t PosixMediaFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return readAll(descriptor_, offset, bytes, 0);
}

std::size_t PosixMediaFile::readAtHand(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    return readAll(descriptor_, offset, bytes, access_ == Access::memory ? 0 : RWF_NOWAIT);
}

void PosixMediaFile::prepare(std::uint64_t offset, std::uint64_t length) const {
    if (offset > furthestOffset || length > furthestOffset) return;
    ::posix_fadvise(descriptor_, static_cast<off_t>(offset), static_cast<off_t>(length), POSIX_FADV_WILLNEED);
}

}  // namespace orbinex
