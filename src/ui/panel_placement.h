#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace orbinex {

/// Where the panel's window goes: centred at the tray icon, below it or, in the lower half of the screen,
/// above it, and wholly on the screen where it fits. `icon` is empty where the desktop does not tell it; then
/// the pointer, which has just clicked it, stands for it. `available` is the screen without docks.
[[nodiscard]] QPoint panelPosition(const QRect& icon, const QPoint& pointer, const QRect& available,
                                   const QSize& panel);

}  // namespace orbinex
