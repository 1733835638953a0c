#include "app/relocation_rules.h"

#include <algorithm>
#include <array>

namespace orbinex {

namespace {

using namespace std::string_view_literals;

// The places of a Mac, as the rules have them. On other systems nothing lies there: what ApplicationBundle
// tells as the user's own folder decides, and no path for what is not to be moved.

/// Where development builds of the program lie.
constexpr std::array developmentPlaces{"/DerivedData/"sv, "/build/Build/Products/"sv};
constexpr std::string_view testBundleEnding = ".xctest";
/// For the applications of all users.
constexpr std::array systemFolders{"/Applications"sv, "/System/Applications"sv};

}  // namespace

bool isMoveOffered(const RelocationFacts& facts) {
    if (facts.isRunUnderTest) return false;
    const auto isPartOfPath = [&](std::string_view place) {
        return facts.bundlePath.find(place) != std::string_view::npos;
    };
    if (std::ranges::any_of(developmentPlaces, isPartOfPath)) return false;
    if (facts.bundlePath.ends_with(testBundleEnding)) return false;
    if (isInApplicationsFolder(facts.bundlePath, facts.userApplicationsFolder)) return false;
    return !facts.isSuppressed;
}

bool isInApplicationsFolder(std::string_view path, std::optional<std::string_view> userApplicationsFolder) {
    const auto holdsIt = [&](std::string_view folder) { return isIn(path, folder); };
    return std::ranges::any_of(systemFolders, holdsIt) ||
           (userApplicationsFolder && holdsIt(*userApplicationsFolder));
}

bool isIn(std::string_view path, std::string_view folder) {
    while (folder.ends_with('/')) folder.remove_suffix(1);
    return !folder.empty() && path.starts_with(folder) &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.ends_with('/')) path.remove_suffix(1);
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace orbinex
