#include "ui/x11_atoms.h"

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace orbinex {

xcb_connection_t* toolkitX11Connection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

}  // namespace orbinex
