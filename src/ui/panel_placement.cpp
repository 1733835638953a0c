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

QPoint panelPosition(const QRect& icon, const QRect& available, const QSize& panel) {
    const bool isAbove = icon.center().y() > available.center().y();
    const int x = icon.center().x() - panel.width() / 2;
    const int y = isAbove ? icon.top() - gap - panel.height() : icon.bottom() + 1 + gap;
    return {onScreen(x, panel.width(), available.x(), available.width()),
            onScreen(y, panel.height(), available.y(), available.height())};
}

}  // namespace orbinex
