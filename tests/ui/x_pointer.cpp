#include "ui/x_pointer.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace orbinex::test {

bool clickOnScreen(const std::string& display, int x, int y) {
    Display* const connection = XOpenDisplay(display.c_str());
    if (!connection) return false;
    XTestFakeMotionEvent(connection, -1, x, y, 0);
    XTestFakeButtonEvent(connection, 1, True, 0);
    XTestFakeButtonEvent(connection, 1, False, 0);
    XSync(connection, False);
    XCloseDisplay(connection);
    return true;
}

}  // namespace orbinex::test
