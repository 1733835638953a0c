#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace orbinex {

/// Where the panel's window goes: centred at the tray icon, below it or, in the lower half of the screen,
/// above it, and wholly on the screen where it fits. `available` is the screen without docks.
[[nodiscard]] QPoint panelPosition(const QRect& icon, const QRect& available, const QSize& panel);

}  // namespace orbinex
