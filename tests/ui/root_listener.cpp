#include "ui/root_listener.h"

#include <stdexcept>

#include <X11/Xlib.h>

namespace orbinex::test {

struct RootListener::Connection {
    Display* display;
};

RootListener::RootListener(const std::string& display)
    : connection_(std::make_unique<Connection>(Connection{XOpenDisplay(display.c_str())})) {
    Display* const opened = connection_->display;
    if (!opened) throw std::runtime_error("the display cannot be used");
    XSelectInput(opened, DefaultRootWindow(opened), SubstructureNotifyMask | PropertyChangeMask);
    XSync(opened, False);
}

RootListener::~RootListener() {
    XCloseDisplay(connection_->display);
}

std::vector<RootListener::Message> RootListener::take() {
    Display* const display = connection_->display;
    std::vector<Message> result;
    XSync(display, False);
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type != ClientMessage) continue;
        const XClientMessageEvent& message = event.xclient;
        char* const type = XGetAtomName(display, message.message_type);
        auto& heard = result.emplace_back(Message{type, message.window, {}, {}});
        XFree(type);
        if (message.format == 32) {
            heard.values.assign(std::begin(message.data.l), std::end(message.data.l));
        } else if (message.format == 8) {
            heard.bytes.assign(std::begin(message.data.b), std::end(message.data.b));
        }
    }
    return result;
}

}  // namespace orbinex::test
