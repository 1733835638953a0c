#pragma once

#include <xcb/xcb.h>

namespace orbinex {

/// The toolkit's connection to the X server. Null where the platform is not X11; those that draw through X11
/// without being it offer the interface, but no connection.
[[nodiscard]] xcb_connection_t* toolkitX11Connection();

/// Asks the X server, and waits for it.
[[nodiscard]] xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name);

}  // namespace orbinex
