#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "input/x11/xlib_types.h"

namespace orbinex::test {

/// A plain X program with one window over the whole screen that has the focus, and what it sees. It handles
/// events only when it is asked, as a program does that is busy in between.
class XClient {
  public:
    struct Event {
        enum class Type { keyPress, keyRelease, buttonPress, buttonRelease, motion, mapping };
        Type type = Type::motion;
        /// What the key gives by the keyboard map at the time of handling, with compose sequences applied.
        std::string text;
        unsigned long keysym = 0;
        /// The modifiers and buttons just before the event, as core protocol bits.
        unsigned state = 0;
        /// The keycode or the button.
        unsigned detail = 0;
        int x = 0;
        int y = 0;
        unsigned long time = 0;
    };

    explicit XClient(const std::string& display);
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;
    ~XClient();

    /// Handles everything that the server has sent so far.
    void handleEvents();
    /// What has been seen since the last call.
    std::vector<Event> takeEvents();
    /// The text of all key presses since the last call.
    std::string takeText();
    /// How many times in a row the latest press came, as toolkits count: same button within 400 ms and five
    /// pixels.
    [[nodiscard]] int clickCount() const { return clickCount_; }

    // What anybody can ask of the server.
    /// All keycodes that are down.
    [[nodiscard]] std::vector<unsigned> keysDown() const;
    [[nodiscard]] unsigned buttonsDown() const;
    [[nodiscard]] std::pair<int, int> pointer() const;
    /// Base, latched and locked modifiers, a byte each from the lowest.
    [[nodiscard]] unsigned modifierState() const;
    /// Every key's meaning and every modifier's keys.
    [[nodiscard]] std::string keyboardMap() const;
    [[nodiscard]] bool hasRootProperty(const std::string& name) const;
    void setRootProperty(const std::string& name, const std::vector<unsigned long>& words) const;

    // What a person or another program does. `keyboard` 0 is the server's test keyboard, otherwise the
    // device.
    void key(unsigned keycode, bool isDown) const;
    void physicalKey(unsigned keycode, bool isDown) const;
    void movePointerBy(int dx, int dy) const;
    void physicalMovePointerBy(int dx, int dy) const;
    void warpPointerBy(int dx, int dy) const;
    void lockModifiers(unsigned mask, unsigned values) const;
    void latchModifiers(unsigned mask, unsigned values) const;
    void lockGroup(unsigned group) const;
    /// Holds every press of the left button back, before any window sees it, as window managers do.
    void holdPressesBack() const;
    /// Hands on what was held back, and holds no more.
    void letPressesGo() const;
    /// Tells, as window managers do, that our window is the one that is worked in, and gives it this class;
    /// with an empty class no window is.
    void beActiveAs(std::string windowClass) const;

    [[nodiscard]] _XDisplay* display() const { return display_; }

  private:
    void noteClick(const Event& event);

    _XDisplay* display_;
    unsigned long window_ = 0;
    struct Compose;
    std::unique_ptr<Compose> compose_;
    std::vector<Event> events_;
    Event lastPress_;
    int clickCount_ = 0;
};

}  // namespace orbinex::test
