#pragma once

#include <string>

#include "base/signal.h"
#include "input/x11/x11_connection.h"

namespace orbinex {

/// Whether an X server takes input from a certain device of the system. A server may be without it for good
/// (nested, virtual and remote ones know no devices of the system), find it some time after it was made, or
/// lose it for a while, as when another session is on the screen.
class X11DeviceWatch {
  public:
    /// The device is known by its name. The connection must outlive the watch.
    X11DeviceWatch(X11Connection& connection, std::string name);

    /// True while the server lists the device as one that is on and moves a pointer.
    [[nodiscard]] bool isInUse();

  private:
    void noteEvent(const _XEvent& event);
    void readIfStale();

    X11Connection& connection_;
    std::string name_;
    /// The number of the X input extension; 0 without it.
    int extension_ = 0;
    bool isStale_ = true;
    bool isInUse_ = false;
    Subscription events_;
};

}  // namespace orbinex
