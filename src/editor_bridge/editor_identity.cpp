#include "editor_bridge/editor_identity.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace orbinex {

namespace {

/// In the order in which they are looked for.
constexpr std::array<std::string_view, 10> editors{
    resolveBundleID, "com.apple.logic10", "com.apple.FinalCut", "com.avid.ProTools", "com.adobe.PremierePro",
    // Workstations of Linux. The faders of one that is not known, as far as it reports them, would not be
    // taken for the session's.
    "org.ardour.Ardour", "com.harrisonaudio.Mixbus", "com.cockos.reaper", "com.bitwig.BitwigStudio",
    "org.rncbc.qtractor"};

}  // namespace

std::optional<std::string_view> knownEditor(std::string_view bundleID) {
    const auto* const found =
        std::ranges::find_if(editors, [&](auto editor) { return containsIgnoringCase(bundleID, editor); });
    return found == editors.end() ? std::nullopt : std::optional(*found);
}

bool isResolveID(std::string_view bundleID) {
    return bundleID.size() == resolveBundleID.size() && containsIgnoringCase(bundleID, resolveBundleID);
}

bool isResolve(const RunningApplication& application) {
    return isResolveID(application.bundleID) ||
           containsIgnoringCase(application.localizedName, "DaVinci Resolve");
}

}  // namespace orbinex
