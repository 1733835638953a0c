#pragma once

#include <QString>
#include <cstdint>

namespace orbinex::demo {

/// Colours that the editor shows nowhere else, so that its paper and its caret can be found on the screen.
/// 0xRRGGBB.
inline constexpr std::uint32_t paperColour = 0xfffdf4;
inline constexpr std::uint32_t caretColour = 0xd81b60;

/// Writes the settings of the window manager, of GTK and of the editor into a home folder of the demo's own.
/// False when that fails.
bool writeDesktopSettings(const QString& configFolder);
/// Where the window manager's settings are.
QString windowManagerSettings(const QString& configFolder);

}  // namespace orbinex::demo
