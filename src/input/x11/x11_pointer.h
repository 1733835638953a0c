#pragma once

#include <vector>

#include "base/signal.h"
#include "input/geometry.h"
#include "input/x11/x11_connection.h"

namespace orbinex {

/// Moves the pointer of an X server. The server counts whole pixels; the fraction of where we sent the
/// pointer is kept for as long as the pointer stays there, so that small movements add up.
class X11Pointer {
  public:
    explicit X11Pointer(X11Connection& connection);

    /// (0, 0) when the server does not answer.
    [[nodiscard]] Point location();
    void moveTo(Point location);

  private:
    X11Connection& connection_;
    /// Where the pointer was last sent.
    Point sent_;
};

}  // namespace orbinex
