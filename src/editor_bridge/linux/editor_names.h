#pragma once

#include <string_view>

#include "editor_bridge/workspace.h"

namespace orbinex {

/// The known editor whose program or whose windows are called so on Linux, natively or under Wine; null for
/// any other name. `name` is a program's file name or a window's class, in letters of either case, with or
/// without ".exe". Allocates nothing; the result lives for ever, one object an editor.
const RunningApplication* editorNamed(std::string_view name);
/// The known editor with exactly this identifier; null for anything else.
const RunningApplication* editorWithID(std::string_view bundleID);

}  // namespace orbinex
