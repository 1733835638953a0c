#pragma once

#include <string>

namespace orbinex::test {

/// Clicks with the left button at a place on the X screen, in pixels. False when the display cannot be used.
bool clickOnScreen(const std::string& display, int x, int y);

}  // namespace orbinex::test
