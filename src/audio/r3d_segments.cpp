#include "audio/r3d_segments.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"

namespace orbinex {

namespace {

constexpr std::string_view firstSuffix = "_001.R3D";

std::string suffix(int number) {
    std::string digits = std::to_string(number);
    digits.insert(0, 3 - digits.size(), '0');
    return "_" + digits + ".R3D";
}

}  // namespace

std::vector<std::string> segmentPaths(const std::string& path,
                                      const std::function<bool(const std::string&)>& exists) {
    const auto stemSize = path.size() - std::min(path.size(), firstSuffix.size());
    const std::string stem = path.substr(0, stemSize);
    if (uppercased(std::string_view(path).substr(stemSize)) != firstSuffix) return {path};
    std::vector<std::string> segments;
    for (int number = 1; number <= mostSegments; ++number) {
        std::string candidate = stem + suffix(number);
        if (!exists(candidate)) break;
        segments.push_back(std::move(candidate));
    }
    if (segments.empty()) return {path};
    return segments;
}

}  // namespace orbinex
