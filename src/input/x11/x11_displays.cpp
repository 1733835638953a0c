#include "input/x11/x11_displays.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

namespace orbinex {

namespace {

Rect rectOf(const XRRMonitorInfo& monitor) {
    return {static_cast<double>(monitor.x), static_cast<double>(monitor.y),
            static_cast<double>(monitor.width), static_cast<double>(monitor.height)};
}

}  // namespace

X11Displays::X11Displays(X11Connection& connection) : connection_(connection) {
    if (!connection_.isAlive()) return;
    XRRSelectInput(connection_.display(), connection_.root(),
                   RRScreenChangeNotifyMask | RRCrtcChangeNotifyMask | RROutputChangeNotifyMask);
    // Monitors that a person defines by hand are announced as a change of the root window.
    XSelectInput(connection_.display(), connection_.root(), StructureNotifyMask);
    events_ = connection_.onEvent([this](XEvent* const& event) { noteEvent(*event); });
    readIfStale();
}

void X11Displays::noteEvent(const XEvent& event) {
    const int base = connection_.randrEventBase();
    const bool isChange = event.type == base + RRScreenChangeNotify || event.type == base + RRNotify ||
                          event.type == ConfigureNotify;
    if (!isChange) return;
    isStale_ = true;
    XEvent copy = event;
    XRRUpdateConfiguration(&copy);
}

void X11Displays::readIfStale() {
    if (!isStale_ || !connection_.isAlive()) return;
    isStale_ = false;
    count_ = 0;
    Display* const display = connection_.display();
    const int screen = DefaultScreen(display);
    main_ = {0, 0, static_cast<double>(DisplayWidth(display, screen)),
             static_cast<double>(DisplayHeight(display, screen))};
    int found = 0;
    XRRMonitorInfo* const monitors = XRRGetMonitors(display, connection_.root(), True, &found);
    if (!monitors) return;
    for (int i = 0; i < found && count_ < displays_.size(); ++i) {
        if (monitors[i].width <= 0 || monitors[i].height <= 0) continue;
        const Rect rect = rectOf(monitors[i]);
        if (count_ == 0 || monitors[i].primary) main_ = rect;
        displays_[count_++] = rect;
    }
    XRRFreeMonitors(monitors);
}

std::span<const Rect> X11Displays::active() {
    readIfStale();
    return std::span(displays_).first(count_);
}

Rect X11Displays::main() {
    readIfStale();
    return main_;
}

}  // namespace orbinex
