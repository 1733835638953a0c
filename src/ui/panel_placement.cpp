#include "ui/panel_placement.h"

#include <algorithm>

namespace orbinex {

namespace {

constexpr int gap = 8;

/// The first coordinate of a length that is to lie on the screen; its beginning does so in any case.
int onScreen(int first, int length, int screenFirst, int screenLength) {
    return std::max(screenFirst + gap, std::min(first, screenFirst + screenLength - gap - length));
}

}  // namespace

QPoint panelPosition(const QRect& icon, const QPoint& pointer, const QRect& available, const QSize& panel) {
    const QRect anchor = icon.isEmpty() ? QRect(pointer, QSize(1, 1)) : icon;
    const bool isAbove = anchor.center().y() > available.center().y();
    const int x = anchor.center().x() - panel.width() / 2;
    const int y = isAbove ? anchor.top() - gap - panel.height() : anchor.bottom() + 1 + gap;
    return {onScreen(x, panel.width(), available.x(), available.width()),
            onScreen(y, panel.height(), available.y(), available.height())};
}

}  // namespace orbinex
