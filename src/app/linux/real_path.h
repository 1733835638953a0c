#pragma once

#include <string>

namespace orbinex {

/// An absolute path with every link followed, as far as it is there. Others stay as they are, and so does one
/// whose links lead nowhere.
[[nodiscard]] std::string realPath(const std::string& path);

}  // namespace orbinex
