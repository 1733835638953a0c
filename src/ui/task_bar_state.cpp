#include "ui/task_bar_state.h"

#include <QGuiApplication>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <xcb/xcb.h>

namespace orbinex {

namespace {

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// What the Extended Window Manager Hints call adding and removing a state.
constexpr std::uint32_t removeState = 0;
constexpr std::uint32_t addState = 1;
constexpr std::uint32_t fromAnApplication = 1;

/// A window that is shown: only the window manager may change its state.
void askWindowManager(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t state,
                      const std::array<xcb_atom_t, 2>& skips, bool isSkipped) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = state;
    message.data.data32[0] = isSkipped ? addState : removeState;
    message.data.data32[1] = skips[0];
    message.data.data32[2] = skips[1];
    message.data.data32[3] = fromAnApplication;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

/// A window that is not shown: its state is what the window manager will read.
void writeState(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t state,
                const std::array<xcb_atom_t, 2>& skips, bool isSkipped) {
    const auto count = isSkipped ? static_cast<std::uint32_t>(skips.size()) : 0U;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, state, XCB_ATOM_ATOM, 32, count,
                        skips.data());
}

}  // namespace

void setSkipsTaskBar(QWindow& window, bool isSkipped) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Platforms that draw through X11 without being it offer the interface, but no connection.
    xcb_connection_t* const connection = x11 ? x11->connection() : nullptr;
    if (!connection) return;
    const xcb_atom_t state = atomNamed(connection, "_NET_WM_STATE");
    const std::array skips{atomNamed(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                           atomNamed(connection, "_NET_WM_STATE_SKIP_PAGER")};
    const auto id = static_cast<xcb_window_t>(window.winId());
    if (window.isVisible()) {
        askWindowManager(connection, id, state, skips, isSkipped);
    } else {
        writeState(connection, id, state, skips, isSkipped);
    }
    xcb_flush(connection);
}

}  // namespace orbinex
