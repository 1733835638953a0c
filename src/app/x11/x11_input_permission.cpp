#include "app/x11/x11_input_permission.h"

#include <functional>
#include <span>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xrandr.h>

#include "input/x11/x11_connection.h"

namespace orbinex {

namespace {

/// Of a property of an input device that holds one byte; false as well when it has no such property.
bool isSet(Display* display, int device, Atom property) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    if (XIGetProperty(display, device, property, 0, 1, False, XA_INTEGER, &type, &format, &count, &rest,
                      &data) != Success)
        return false;
    const bool result = data && type == XA_INTEGER && format == 8 && count == 1 && *data != 0;
    if (data) XFree(data);
    return result;
}

/// Calls with every device that the server has made for the XTEST extension.
void forEachTestDevice(Display* display, const std::function<void(const XIDeviceInfo&)>& look) {
    const Atom mark = XInternAtom(display, "XTEST Device", False);
    int count = 0;
    XIDeviceInfo* const devices = XIQueryDevice(display, XIAllDevices, &count);
    if (!devices) return;
    for (const auto& device : std::span(devices, static_cast<std::size_t>(count))) {
        const bool isMaster = device.use == XIMasterPointer || device.use == XIMasterKeyboard;
        if (!isMaster && isSet(display, device.deviceid, mark)) look(device);
    }
    XIFreeDeviceInfo(devices);
}

bool areTestDevicesOn(Display* display) {
    bool areOn = true;
    forEachTestDevice(display, [&](const XIDeviceInfo& device) { areOn = areOn && device.enabled; });
    return areOn;
}

void turnTestDevicesOn(Display* display) {
    const Atom enabled = XInternAtom(display, "Device Enabled", False);
    forEachTestDevice(display, [&](const XIDeviceInfo& device) {
        unsigned char on = 1;
        if (!device.enabled)
            XIChangeProperty(display, device.deviceid, enabled, XA_INTEGER, 8, PropModeReplace, &on, 1);
    });
    XSync(display, False);
}

}  // namespace

/// Such a server has the windows of a part of the programs, and calls its screens after itself.
bool X11InputPermission::isXwayland() {
    Display* const display = connection_.display();
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
    if (isXwayland()) return Obstacle::waylandSession;
    const bool areOn = areTestDevicesOn(connection_.display());
    connection_.processEvents();
    if (!connection_.isAlive()) return Obstacle::noServer;
    return areOn ? Obstacle::none : Obstacle::devicesOff;
}

bool X11InputPermission::isGranted() {
    return obstacle() == Obstacle::none;
}

bool X11InputPermission::request() {
    if (obstacle() == Obstacle::devicesOff) turnTestDevicesOn(connection_.display());
    return isGranted();
}

std::string X11InputPermission::explanation() {
    switch (obstacle()) {
        case Obstacle::none: return {};
        case Obstacle::noServer: return "The X display is gone.";
        case Obstacle::noExtension:
            return "The X server takes no input from programs, because its XTEST extension is off. Turn it "
                   "on "
                   "in the server's configuration, and log in again.";
        case Obstacle::waylandSession:
            return "In a Wayland session Orbinex cannot reach every window. Log out, choose a session with "
                   "Xorg on the login screen, and log in again.";
        case Obstacle::devicesOff:
            return "The X server's devices for input from programs are switched off. Click Allow to switch "
                   "them on again.";
    }
    return {};
}

}  // namespace orbinex
