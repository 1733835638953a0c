#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "base/signal.h"
#include "input/event_poster.h"
#include "input/geometry.h"
#include "input/x11/x11_connection.h"

namespace orbinex {

/// The monitors of an X server, read again when the server tells of a change.
class X11Displays {
  public:
    explicit X11Displays(X11Connection& connection);

    /// As EventPoster::activeDisplays().
    [[nodiscard]] std::span<const Rect> active();
    /// The primary monitor, else the first, else the whole screen.
    [[nodiscard]] Rect main();

  private:
    void noteEvent(const _XEvent& event);
    void readIfStale();

    X11Connection& connection_;
    bool isStale_ = true;
    std::array<Rect, EventPoster::maximumDisplays> displays_{};
    std::size_t count_ = 0;
    Rect main_;
    Subscription events_;
};

}  // namespace orbinex
