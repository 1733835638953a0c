#include "app/linux/real_path.h"

#include <filesystem>
#include <system_error>

namespace orbinex {

std::string realPath(const std::string& path) {
    if (!path.starts_with('/')) return path;
    std::error_code error;
    const auto real = std::filesystem::weakly_canonical(path, error);
    return error ? path : real.string();
}

}  // namespace orbinex
