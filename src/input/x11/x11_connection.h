#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/signal.h"
#include "input/x11/xlib_types.h"

namespace orbinex {

/// One connection to an X server and the events that arrive on it, shared by the adapters of this folder.
/// Errors that the server reports are passed over: everything done here may meet a window or device that has
/// just gone. When the server goes away the connection becomes dead and stays so; the process lives on. Main
/// thread only.
class X11Connection {
  public:
    /// Why there is no connection.
    enum class Obstacle {
        none,
        noServer,
        noKeyboardExtension,  ///< XKEYBOARD, by which its keyboard is known
        noScreenExtension,    ///< RANDR 1.5, by which its screens are
    };

    /// Connects to the display (empty: the one in the environment). Nothing when that fails or the server
    /// lacks an extension that is needed; `obstacle`, where given, tells which of these.
    static std::unique_ptr<X11Connection> open(const std::string& displayName = {},
                                               Obstacle* obstacle = nullptr);
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    /// Readable when processEvents() has something to do.
    [[nodiscard]] int fd() const;
    /// Reads what has arrived, without waiting, and tells the observers. To be called too after waiting for a
    /// reply, for events that came along with it do not make fd() readable again.
    void processEvents();
    /// False once the server has gone. Ask before every use of the display: Xlib's requests are not safe
    /// then.
    [[nodiscard]] bool isAlive() const;
    /// The server has the XTEST extension. Without it nothing can be posted, and nothing of it may be asked.
    [[nodiscard]] bool hasXTest() const { return hasXTest_; }
    /// Sends what is buffered; false when the server has gone.
    bool flush();

    [[nodiscard]] Subscription onEvent(Signal<_XEvent*>::Observer observer);

    [[nodiscard]] _XDisplay* display() const { return display_; }
    [[nodiscard]] xcb_connection_t* xcb() const { return xcb_; }
    [[nodiscard]] unsigned long root() const { return root_; }
    /// The number that events of these extensions count from.
    [[nodiscard]] int xkbEventBase() const { return xkbEventBase_; }
    [[nodiscard]] int randrEventBase() const { return randrEventBase_; }

  private:
    struct State {
        bool isAlive = true;
    };
    X11Connection(_XDisplay* display, std::unique_ptr<State> state);
    Obstacle findExtensions();

    _XDisplay* display_;
    xcb_connection_t* xcb_;
    std::unique_ptr<State> state_;
    unsigned long root_ = 0;
    bool hasXTest_ = false;
    int xkbEventBase_ = 0;
    int randrEventBase_ = 0;
    Signal<_XEvent*> events_;
};

}  // namespace orbinex
