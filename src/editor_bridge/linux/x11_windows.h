#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "editor_bridge/linux/readable_watch.h"

struct xcb_connection_t;

namespace orbinex {

/// What a window says of itself; texts are valid UTF-8 and short, and may be empty.
struct WindowFacts {
    /// The two names of WM_CLASS.
    std::string windowClass;
    std::string instance;
    std::string title;
    /// Zero when it does not say, or is another computer's.
    pid_t pid = 0;
    /// False for docks, desktops, menus and the like, which are no windows of an application.
    bool isOrdinary = true;

    friend bool operator==(const WindowFacts&, const WindowFacts&) = default;
};

/// The windows that the window manager of an X server lists, and the active one, by its EWMH properties; none
/// without such a manager. When there is no server, or it goes away, there are no windows either. It waits
/// for the server's answers only when windows have come or changed what they say. Needs the Qt event loop.
class X11Windows {
  public:
    using Window = std::uint32_t;
    static constexpr std::uint32_t maxWindows = 4096;

    /// An empty name stands for the display in the environment. `changed` is called on the main thread after
    /// each change, not by the constructor.
    X11Windows(const std::string& displayName, std::function<void()> changed);
    X11Windows(const X11Windows&) = delete;
    X11Windows& operator=(const X11Windows&) = delete;
    ~X11Windows();

    /// In the order in which they have come, the active one included.
    [[nodiscard]] const std::vector<Window>& all() const { return order_; }
    /// Of one of those.
    [[nodiscard]] const WindowFacts& facts(Window window) const { return facts_.at(window); }
    /// Zero when none is.
    [[nodiscard]] Window active() const { return active_; }

  private:
    struct Atoms;
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const;
    };
    void processEvents();
    /// True when there was something.
    bool takeEvents();
    void readWindows();
    void readFacts(const std::vector<Window>& windows);

    std::function<void()> changed_;
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    std::unique_ptr<Atoms> atoms_;
    Window root_ = 0;
    std::string ownComputer_;
    std::vector<Window> order_;
    std::map<Window, WindowFacts> facts_;
    Window active_ = 0;
    std::vector<Window> stale_;
    bool isListStale_ = true;
    std::optional<ReadableWatch> watch_;
};

}  // namespace orbinex
