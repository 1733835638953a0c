#pragma once

#include "input/event_poster.h"

namespace orbinex {

/// A device that scrolls by less than a wheel click. XTEST has none; where the system offers another, it
/// takes all scrolling in place of wheel clicks.
class ScrollSink {
  public:
    ScrollSink() = default;
    ScrollSink(const ScrollSink&) = delete;
    ScrollSink& operator=(const ScrollSink&) = delete;
    virtual ~ScrollSink() = default;

    /// As EventPoster::postScroll().
    virtual bool scroll(const ScrollEvent& event) = 0;
};

}  // namespace orbinex
