#include "selection_probe.h"

#include <chrono>
#include <cstring>

#include <poll.h>
#include <xcb/xcb.h>

#include "event_loop.h"
#include "xcb_reply.h"

namespace orbinex::demo {

namespace {

constexpr std::chrono::milliseconds answerLimit{500};
constexpr std::uint32_t lengthLimit = 65536;  // in units of four bytes

/// Marks the events that send_event() made.
constexpr std::uint8_t sentMask = 0x80;

}  // namespace

SelectionProbe::SelectionProbe(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw Ended{"the display " + display + " cannot be opened"};
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    property_ = atom("ORBINEX_DEMO_SELECTION");
    utf8_ = atom("UTF8_STRING");
}

SelectionProbe::~SelectionProbe() {
    xcb_disconnect(connection_);
}

std::uint32_t SelectionProbe::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto reply = adopt(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

std::string SelectionProbe::read(const char* selection) const {
    const std::uint32_t name = atom(selection);
    xcb_convert_selection(connection_, window_, name, utf8_, property_, XCB_CURRENT_TIME);
    xcb_flush(connection_);
    if (!awaitAnswer(name)) return {};
    const auto cookie = xcb_get_property(connection_, 1, window_, property_, utf8_, 0, lengthLimit);
    const auto reply = adopt(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool SelectionProbe::awaitAnswer(std::uint32_t selection) const {
    const auto deadline = std::chrono::steady_clock::now() + answerLimit;
    while (xcb_connection_has_error(connection_) == 0) {
        while (const auto event = adopt(xcb_poll_for_event(connection_))) {
            if ((event->response_type & ~sentMask) != XCB_SELECTION_NOTIFY) continue;
            const auto* notify = reinterpret_cast<const xcb_selection_notify_event_t*>(event.get());
            if (notify->selection == selection) return notify->property != XCB_ATOM_NONE;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd waiting{xcb_get_file_descriptor(connection_), POLLIN, 0};
        ::poll(&waiting, 1, static_cast<int>(left.count()));
    }
    return false;
}

}  // namespace orbinex::demo
