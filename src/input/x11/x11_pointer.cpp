#include "input/x11/x11_pointer.h"

#include <algorithm>
#include <cmath>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace orbinex {

namespace {

/// The pixel that holds the point, within what the protocol can say (16 bits, and it would wrap).
Point pixelOf(Point point) {
    return {std::clamp(std::floor(point.x), -32768.0, 32767.0),
            std::clamp(std::floor(point.y), -32768.0, 32767.0)};
}

}  // namespace

X11Pointer::X11Pointer(X11Connection& connection) : connection_(connection) {}

Point X11Pointer::location() {
    if (!connection_.isAlive()) return {};
    Window root = None;
    Window child = None;
    int x = 0;
    int y = 0;
    int windowX = 0;
    int windowY = 0;
    unsigned mask = 0;
    XQueryPointer(connection_.display(), connection_.root(), &root, &child, &x, &y, &windowX, &windowY,
                  &mask);
    const Point pixel{static_cast<double>(x), static_cast<double>(y)};
    return pixel == pixelOf(sent_) ? sent_ : pixel;
}

void X11Pointer::moveTo(Point location) {
    const Point pixel = pixelOf(location);
    XTestFakeMotionEvent(connection_.display(), -1, static_cast<int>(pixel.x), static_cast<int>(pixel.y),
                         CurrentTime);
    sent_ = location;
}

}  // namespace orbinex
