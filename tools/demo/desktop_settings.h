#pragma once

#include <QString>
#include <cstdint>

namespace orbinex::demo {

/// Colours that the editor shows nowhere else, so that its paper and its caret can be found on the screen.
/// 0xRRGGBB.
inline constexpr std::uint32_t paperColour = 0xfffdf4;
inline constexpr std::uint32_t caretColour = 0xd81b60;

/// Where windows open on a screen, in pixels.
struct WindowPlaces {
    struct Place {
        int x;
        int y;
    };
    Place letter;
    Place mainWindow;
    Place phone;
    /// Right of the phone.
    int deskLeft;
};
/// A screen of 1720 by 1000 has room for the phone beside the rest.
inline constexpr WindowPlaces unseenPlaces{{480, 84}, {480, 28}, {24, 28}, 470};
/// On 1280 by 800 the phone has no place, as it is not there.
inline constexpr WindowPlaces nestedPlaces{{120, 84}, {24, 24}, {0, 0}, 0};

/// Writes the settings of the window manager, of GTK and of the editor into a home folder of the demo's own.
/// False when that fails.
bool writeDesktopSettings(const QString& home, const WindowPlaces& places);
/// Where the window manager's settings are.
QString windowManagerSettings(const QString& home);

}  // namespace orbinex::demo
