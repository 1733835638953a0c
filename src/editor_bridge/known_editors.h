#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "editor_bridge/workspace.h"

namespace orbinex {

/// An editor or workstation whose session the iPhone shows while it is in front.
struct KnownEditor {
    /// As it is told, with the identifier spelled as the editor itself does.
    RunningApplication application;
    /// What its programs and windows are called where applications have no identifiers, in lower case and
    /// without ".exe". A '#' stands for a version, such as "13" or "8.4.0".
    std::vector<std::string_view> names;
};

/// All of them, in the order in which they are looked for. They live for ever.
std::span<const KnownEditor> knownEditors();

}  // namespace orbinex
