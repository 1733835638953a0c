#include "ui/x11_window_hints.h"

#include <QRegion>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <unistd.h>

#include "ui/x11_atoms.h"

namespace orbinex {

namespace {

xcb_window_t idOf(const QWindow& window) {
    return static_cast<xcb_window_t>(window.winId());
}

void sendToRoot(xcb_connection_t* connection, const xcb_client_message_event_t& message, std::uint32_t mask) {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root, mask, reinterpret_cast<const char*>(&message));
}

// As in the Extended Window Manager Hints.
constexpr std::uint32_t removeState = 0;
constexpr std::uint32_t addState = 1;
constexpr std::uint32_t fromAnApplication = 1;

void askWindowManager(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t type,
                      const std::array<std::uint32_t, 4>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::ranges::copy(data, message.data.data32);
    sendToRoot(connection, message,
               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

/// As text in quotes.
std::string quotedText(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

}  // namespace

void setSkipsTaskBar(QWindow& window, bool isSkipped) {
    xcb_connection_t* const connection = toolkitX11Connection();
    if (!connection) return;
    const xcb_atom_t state = atomNamed(connection, "_NET_WM_STATE");
    const std::array skips{atomNamed(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                           atomNamed(connection, "_NET_WM_STATE_SKIP_PAGER")};
    if (window.isVisible()) {
        // Only the window manager may change the state of a window that is shown.
        askWindowManager(connection, idOf(window), state,
                         {isSkipped ? addState : removeState, skips[0], skips[1], fromAnApplication});
    } else {
        const auto count = isSkipped ? static_cast<std::uint32_t>(skips.size()) : 0U;
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, idOf(window), state, XCB_ATOM_ATOM, 32, count,
                            skips.data());
    }
    xcb_flush(connection);
}

void roundCorners(QWindow& window, int radius) {
    if (!toolkitX11Connection()) return;
    const int width = window.width();
    const int height = window.height();
    QRegion shape(0, radius, width, height - 2 * radius);
    // Pixels whose middle is within the circle; the same in all four corners, as regions of curves are not.
    for (int row = 0; row < radius; ++row) {
        const double up = radius - row - 0.5;
        const auto inset = static_cast<int>(std::lround(radius - std::sqrt(radius * radius - up * up)));
        shape += QRect(inset, row, width - 2 * inset, 1);
        shape += QRect(inset, height - 1 - row, width - 2 * inset, 1);
    }
    window.setMask(shape);
}

std::optional<std::uint32_t> startupTime(std::string_view startupToken) {
    constexpr std::string_view mark = "_TIME";
    const auto at = startupToken.rfind(mark);
    if (at == std::string_view::npos) return std::nullopt;
    const auto digits = startupToken.substr(at + mark.size());
    std::uint32_t time = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), time);
    // To window managers zero is no time at all.
    if (error != std::errc() || end != digits.data() + digits.size() || time == 0) return std::nullopt;
    return time;
}

bool activateForLaunch(QWindow& window, std::string_view startupToken) {
    xcb_connection_t* const connection = toolkitX11Connection();
    const auto time = startupTime(startupToken);
    if (!connection || !time) return false;
    askWindowManager(connection, idOf(window), atomNamed(connection, "_NET_ACTIVE_WINDOW"),
                     {fromAnApplication, *time, XCB_WINDOW_NONE, 0});
    xcb_flush(connection);
    return true;
}

std::string launchToken(QWindow& window) {
    xcb_connection_t* const connection = toolkitX11Connection();
    if (!connection) return {};
    const auto cookie = xcb_get_property(connection, 0, idOf(window),
                                         atomNamed(connection, "_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 0, 1);
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
        xcb_get_property_reply(connection, cookie, nullptr), &std::free);
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(std::uint32_t)) return {};
    std::uint32_t time = 0;
    std::memcpy(&time, xcb_get_property_value(reply.get()), sizeof time);
    return time == 0 ? std::string()
                     : "orbinex-" + std::to_string(::getpid()) + "_TIME" + std::to_string(time);
}

void tellLaunched(QWindow& window, std::string_view startupToken) {
    xcb_connection_t* const connection = toolkitX11Connection();
    if (!connection || startupToken.empty()) return;
    // The text and its NUL go in pieces, the first of which has a type of its own.
    const std::string text = "remove: ID=" + quotedText(startupToken);
    const std::size_t size = text.size() + 1;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = idOf(window);
    message.type = atomNamed(connection, "_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t further = atomNamed(connection, "_NET_STARTUP_INFO");
    for (std::size_t at = 0; at < size; at += sizeof message.data.data8) {
        std::ranges::fill(message.data.data8, std::uint8_t{0});
        std::memcpy(message.data.data8, text.c_str() + at, std::min(sizeof message.data.data8, size - at));
        sendToRoot(connection, message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = further;
    }
    xcb_flush(connection);
}

}  // namespace orbinex
