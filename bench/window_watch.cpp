#include "window_watch.h"

#include <set>
#include <span>
#include <stdexcept>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace orbinex {

namespace {

/// Icons and the windows that toolkits keep for themselves are smaller, in pixels.
constexpr int leastSize = 150;
/// Pixels between those that are looked at.
constexpr int stride = 3;

Display* server(void* connection) {
    return static_cast<Display*>(connection);
}

/// Windows come and go while they are looked at.
int ignoreError(Display*, XErrorEvent*) {
    return 0;
}

}  // namespace

WindowWatch::WindowWatch(const std::string& display) : connection_(XOpenDisplay(display.c_str())) {
    if (!connection_) throw std::runtime_error("no X server");
    XSetErrorHandler(ignoreError);
}

WindowWatch::~WindowWatch() {
    XCloseDisplay(server(connection_));
}

unsigned long WindowWatch::shownWindow() const {
    Display* const display = server(connection_);
    Window root = 0;
    Window parent = 0;
    Window* windows = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count)) return 0;
    Window result = 0;
    for (const Window window : std::span(windows, count)) {
        XWindowAttributes attributes{};
        if (!XGetWindowAttributes(display, window, &attributes)) continue;
        if (attributes.map_state == IsViewable && attributes.c_class == InputOutput &&
            attributes.width >= leastSize && attributes.height >= leastSize)
            result = window;
    }
    if (windows) XFree(windows);
    return result;
}

bool WindowWatch::hasPaintedWindow() const {
    Display* const display = server(connection_);
    const Window window = shownWindow();
    XWindowAttributes attributes{};
    if (!window || !XGetWindowAttributes(display, window, &attributes)) return false;
    XImage* const image = XGetImage(display, window, 0, 0, static_cast<unsigned>(attributes.width),
                                    static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (!image) return false;
    std::set<unsigned long> colours;
    for (int y = 0; y < image->height && colours.size() <= 2; y += stride) {
        for (int x = 0; x < image->width && colours.size() <= 2; x += stride)
            colours.insert(XGetPixel(image, x, y));
    }
    XDestroyImage(image);
    return colours.size() > 2;
}

void WindowWatch::closeWindow() const {
    Display* const display = server(connection_);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = shownWindow();
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XFlush(display);
}

}  // namespace orbinex
