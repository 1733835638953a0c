#pragma once

#include <string>

namespace orbinex {

/// Tells why the program does not start: on the standard error stream, and in a box as well where a launcher
/// has started it, whose user sees no streams. The box waits until it is closed, for a minute at most. It
/// needs a QApplication.
void tellStartFailure(const std::string& reason, bool isBoxShown);

}  // namespace orbinex
