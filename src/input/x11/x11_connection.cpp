#include "input/x11/x11_connection.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <X11/XKBlib.h>
#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xrandr.h>

namespace orbinex {

namespace {

/// The displays that are ours. Xlib has one handler of each kind of error for the whole process, and other
/// code in the process may have displays and handlers of its own.
std::vector<Display*>& ownDisplays() {
    static std::vector<Display*> displays;
    return displays;
}

bool isOwn(Display* display) {
    return std::ranges::find(ownDisplays(), display) != ownDisplays().end();
}

XErrorHandler previousErrorHandler = nullptr;
XIOErrorHandler previousIOErrorHandler = nullptr;

int handleError(Display* display, XErrorEvent* error) {
    return isOwn(display) || !previousErrorHandler ? 0 : previousErrorHandler(display, error);
}

/// Returning leaves the rest to the display's exit handler; the handler that Xlib starts with ends the
/// process.
int handleIOError(Display* display) {
    return isOwn(display) || !previousIOErrorHandler ? 0 : previousIOErrorHandler(display);
}

void addOwnDisplay(Display* display) {
    const XErrorHandler error = XSetErrorHandler(handleError);
    if (error != handleError) previousErrorHandler = error;
    const XIOErrorHandler ioError = XSetIOErrorHandler(handleIOError);
    if (ioError != handleIOError) previousIOErrorHandler = ioError;
    ownDisplays().push_back(display);
}

}  // namespace

std::unique_ptr<X11Connection> X11Connection::open(const std::string& displayName, Obstacle* obstacle) {
    Obstacle found = Obstacle::noServer;
    std::unique_ptr<X11Connection> connection;
    if (Display* const display = XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str())) {
        addOwnDisplay(display);
        connection.reset(new X11Connection(display, std::make_unique<State>()));
        found = connection->findExtensions();
    }
    if (obstacle) *obstacle = found;
    return found == Obstacle::none ? std::move(connection) : nullptr;
}

X11Connection::X11Connection(Display* display, std::unique_ptr<State> state)
    : display_(display),
      xcb_(XGetXCBConnection(display)),
      state_(std::move(state)),
      root_(DefaultRootWindow(display)) {
    // Without this Xlib would end the process when the server goes away.
    XSetIOErrorExitHandler(
        display_, [](Display*, void* data) { static_cast<State*>(data)->isAlive = false; }, state_.get());
}

X11Connection::~X11Connection() {
    XCloseDisplay(display_);
    std::erase(ownDisplays(), display_);
}

X11Connection::Obstacle X11Connection::findExtensions() {
    int opcode = 0;
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    hasXTest_ = XTestQueryExtension(display_, &event, &error, &major, &minor);

    major = XkbMajorVersion;
    minor = XkbMinorVersion;
    if (!XkbQueryExtension(display_, &opcode, &xkbEventBase_, &error, &major, &minor))
        return Obstacle::noKeyboardExtension;

    const bool hasScreens = XRRQueryExtension(display_, &randrEventBase_, &error) &&
                            XRRQueryVersion(display_, &major, &minor) &&
                            std::pair(major, minor) >= std::pair(1, 5);
    return hasScreens ? Obstacle::none : Obstacle::noScreenExtension;
}

bool X11Connection::isAlive() const {
    return state_->isAlive && xcb_connection_has_error(xcb_) == 0;
}

int X11Connection::fd() const {
    return ConnectionNumber(display_);
}

void X11Connection::processEvents() {
    while (isAlive() && XEventsQueued(display_, QueuedAfterReading) > 0) {
        XEvent event;
        XNextEvent(display_, &event);
        events_.emit(&event);
    }
}

bool X11Connection::flush() {
    if (isAlive()) XFlush(display_);
    return isAlive();
}

Subscription X11Connection::onEvent(Signal<XEvent*>::Observer observer) {
    return events_.subscribe(std::move(observer));
}

}  // namespace orbinex
