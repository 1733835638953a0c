#pragma once

#include <optional>
#include <string_view>

#include "editor_bridge/workspace.h"

namespace orbinex {

/// The bundle identifier of the editor that the bridge script serves.
inline constexpr std::string_view resolveBundleID = "com.blackmagic-design.DaVinciResolve";

/// The known editor whose identifier occurs in this one, in letters of either case, spelled as the editor
/// itself does; nothing for any other application.
std::optional<std::string_view> knownEditor(std::string_view bundleID);
/// True for that identifier exactly, in letters of either case.
bool isResolveID(std::string_view bundleID);
/// By its identifier, or by its name. Allocates nothing.
bool isResolve(const RunningApplication& application);

}  // namespace orbinex
