#pragma once

#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace orbinex::test {

/// Has the system forget what it remembers of the file, where it can, as after a start of the computer.
inline void forgetInPageCache(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ::fdatasync(file);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    ::close(file);
}

}  // namespace orbinex::test
