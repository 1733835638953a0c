#include "input/x11/x11_device_watch.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

namespace orbinex {

X11DeviceWatch::X11DeviceWatch(X11Connection& connection, std::string name)
    : connection_(connection), name_(std::move(name)) {
    if (!connection_.isAlive()) return;
    Display* const display = connection_.display();
    int extension = 0;
    int event = 0;
    int error = 0;
    int major = 2;
    int minor = 0;
    if (!XQueryExtension(display, "XInputExtension", &extension, &event, &error)) return;
    if (XIQueryVersion(display, &major, &minor) != Success) return;
    extension_ = extension;
    std::array<unsigned char, XIMaskLen(XI_HierarchyChanged)> bits{};
    XISetMask(bits.data(), XI_HierarchyChanged);
    XIEventMask mask{XIAllDevices, static_cast<int>(bits.size()), bits.data()};
    XISelectEvents(display, connection_.root(), &mask, 1);
    events_ = connection_.onEvent([this](XEvent* const& what) { noteEvent(*what); });
}

void X11DeviceWatch::noteEvent(const XEvent& event) {
    if (event.type == GenericEvent && event.xcookie.extension == extension_ &&
        event.xcookie.evtype == XI_HierarchyChanged)
        isStale_ = true;
}

void X11DeviceWatch::readIfStale() {
    if (!isStale_ || !connection_.isAlive()) return;
    isStale_ = false;
    isInUse_ = false;
    if (extension_ == 0) return;
    int count = 0;
    XIDeviceInfo* const devices = XIQueryDevice(connection_.display(), XIAllDevices, &count);
    if (!devices) return;
    isInUse_ = std::ranges::any_of(
        std::span(devices, static_cast<std::size_t>(count)), [this](const XIDeviceInfo& device) {
            return device.enabled && device.use == XISlavePointer && device.name == name_;
        });
    XIFreeDeviceInfo(devices);
}

bool X11DeviceWatch::isInUse() {
    readIfStale();
    return isInUse_;
}

}  // namespace orbinex
