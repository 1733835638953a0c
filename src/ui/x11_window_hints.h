#pragma once

#include <QWindow>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orbinex {

// What X11's window managers and launchers are told beyond what Qt tells them. Where the platform is not X11
// nothing is done.

/// Takes a window out of the task bar, the pager and the window switcher, or puts it back.
void setSkipsTaskBar(QWindow& window, bool isSkipped);

/// Rounds the corners of a window without a frame, in pixels of the interface; without a compositor too.
void roundCorners(QWindow& window, int radius);

/// When the person did what led to a launch, by the X server's clock in milliseconds; nothing when the token
/// does not tell. By the Startup Notification Protocol such tokens end in "_TIME" and that number.
[[nodiscard]] std::optional<std::uint32_t> startupTime(std::string_view startupToken);
/// Asks that a window that is shown comes to the front, on the grounds that the person has just launched the
/// program; window managers refuse that to programs that nobody has touched for a while. False where this
/// token gives no grounds.
bool activateForLaunch(QWindow& window, std::string_view startupToken);
/// A token by which a program that is started now comes to the front, on the grounds of what the person last
/// did in this window; empty where they have done nothing in it.
[[nodiscard]] std::string launchToken(QWindow& window);
/// Tells launchers that the launch has led to a window, so that they stop showing that they wait for it.
void tellLaunched(QWindow& window, std::string_view startupToken);

}  // namespace orbinex
