#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orbinex {

/// Segments that one R3D clip has at most.
inline constexpr int mostSegments = 32;

/// The files that make up the R3D clip at `path`, in order. A name that ends in _001.R3D, in capitals or not,
/// begins a series, _002.R3D and on, in capitals, up to the first that does not exist. Any other name, and
/// one whose series has no file, stands alone.
std::vector<std::string> segmentPaths(const std::string& path,
                                      const std::function<bool(const std::string&)>& exists);

}  // namespace orbinex
