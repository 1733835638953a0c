#include "editor_bridge/editor_identity.h"

#include "base/text.h"
#include "editor_bridge/known_editors.h"

namespace orbinex {

std::optional<std::string_view> knownEditor(std::string_view bundleID) {
    for (const auto& editor : knownEditors()) {
        if (containsIgnoringCase(bundleID, editor.application.bundleID)) return editor.application.bundleID;
    }
    return std::nullopt;
}

bool isResolveID(std::string_view bundleID) {
    return bundleID.size() == resolveBundleID.size() && containsIgnoringCase(bundleID, resolveBundleID);
}

bool isResolve(const RunningApplication& application) {
    return isResolveID(application.bundleID) ||
           containsIgnoringCase(application.localizedName, "DaVinci Resolve");
}

}  // namespace orbinex
