#pragma once

#include <string>

namespace orbinex {

/// The windows on an X server without a window manager, as somebody who looks at the screen has them.
class WindowWatch {
  public:
    /// Throws std::runtime_error without the server.
    explicit WindowWatch(const std::string& display);
    WindowWatch(const WindowWatch&) = delete;
    WindowWatch& operator=(const WindowWatch&) = delete;
    ~WindowWatch();

    /// Whether a window is shown, no mere icon, and has been painted: more than two colours are seen in it.
    [[nodiscard]] bool hasPaintedWindow() const;
    /// Whether a window is shown.
    [[nodiscard]] bool hasWindow() const { return shownWindow() != 0; }
    /// Asks the window to close, as the button of its frame does.
    void closeWindow() const;

  private:
    [[nodiscard]] unsigned long shownWindow() const;

    /// Xlib's connection.
    void* connection_;
};

}  // namespace orbinex
