#pragma once

#include <string_view>

#include "input/event_poster.h"

namespace orbinex {

/// A device of the system's that scrolls by less than a wheel click. Where the display takes input from it,
/// it takes all scrolling in place of wheel clicks.
class ScrollSink {
  public:
    ScrollSink() = default;
    ScrollSink(const ScrollSink&) = delete;
    ScrollSink& operator=(const ScrollSink&) = delete;
    virtual ~ScrollSink() = default;

    /// What the display calls the device, as no other device is called. Never changes.
    [[nodiscard]] virtual std::string_view deviceName() const = 0;
    /// False when the device does not take the event; then nothing of it was posted. To be asked only while
    /// the display takes input from the device: it may scroll another display, or none.
    virtual bool scroll(const ScrollEvent& event) = 0;
    /// Forgets what was less than the device's smallest scroll.
    virtual void dropRemainder() = 0;
};

}  // namespace orbinex
