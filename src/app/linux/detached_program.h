#pragma once

#include <string>
#include <vector>

namespace orbinex {

/// Starts a program that outlives this one and does not belong to its terminal: `command` is its name or
/// path and its arguments, which no shell reads. It does not get what only a self-contained copy of this
/// program has set in the environment. `startupToken` is what lets its window come to the front; empty for
/// none. False when there is no such program or it cannot be started.
bool startDetached(const std::vector<std::string>& command, const std::string& startupToken = {});

}  // namespace orbinex
