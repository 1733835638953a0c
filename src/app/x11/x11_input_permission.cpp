#include "app/x11/x11_input_permission.h"

#include <span>
#include <string_view>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xrandr.h>

#include "input/x11/x11_connection.h"

namespace orbinex {

/// Such a server has the windows of a part of the programs.
bool X11InputPermission::isXwayland() {
    Display* const display = connection_.display();
    int opcode = 0;
    int event = 0;
    int error = 0;
    if (XQueryExtension(display, "XWAYLAND", &opcode, &event, &error)) return true;
    // Older ones do not say so, but call their screens after themselves.
    int count = 0;
    XRRMonitorInfo* const monitors = XRRGetMonitors(display, connection_.root(), True, &count);
    if (!monitors) return false;
    bool result = false;
    for (const auto& monitor : std::span(monitors, static_cast<std::size_t>(count))) {
        char* const name = XGetAtomName(display, monitor.name);
        result = result || (name && std::string_view(name).starts_with("XWAYLAND"));
        if (name) XFree(name);
    }
    XRRFreeMonitors(monitors);
    return result;
}

X11InputPermission::Obstacle X11InputPermission::obstacle() {
    if (!connection_.isAlive()) return Obstacle::noServer;
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    if (!XTestQueryExtension(connection_.display(), &event, &error, &major, &minor))
        return connection_.isAlive() ? Obstacle::noExtension : Obstacle::noServer;
    const bool isPartOfASession = isXwayland();
    if (!connection_.isAlive()) return Obstacle::noServer;
    return isPartOfASession ? Obstacle::waylandSession : Obstacle::none;
}

bool X11InputPermission::isGranted() {
    return obstacle() == Obstacle::none;
}

std::string X11InputPermission::explanation() {
    switch (obstacle()) {
        case Obstacle::none: return {};
        case Obstacle::noServer: return "The X display is gone.";
        case Obstacle::noExtension:
            return "The X server takes no input from this program, as it does not offer it the XTEST "
                   "extension. Turn that on in the server's configuration, and log in again.";
        case Obstacle::waylandSession:
            return "In a Wayland session Orbinex cannot reach every window. Log out, choose a session with "
                   "Xorg on the login screen, and log in again.";
    }
    return {};
}

}  // namespace orbinex
