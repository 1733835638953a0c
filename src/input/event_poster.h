#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "input/event_flags.h"
#include "input/geometry.h"
#include "protocol/input_packet.h"

namespace orbinex {

struct MouseEvent {
    enum class Type { leftDown, leftUp, rightDown, rightUp, moved, leftDragged, rightDragged };
    Type type = Type::moved;
    /// For motion, where the pointer goes; for buttons, where it is.
    Point location;
    MouseButton button = MouseButton::left;
    /// How many clicks this press or release completes, 1 to 3; 0 for motion.
    std::int64_t clickState = 0;
    /// The motion as received, rounded; 0 for buttons.
    std::int64_t deltaX = 0;
    std::int64_t deltaY = 0;
    friend bool operator==(const MouseEvent&, const MouseEvent&) = default;
};

/// A scroll in pixel units.
struct ScrollEvent {
    /// Vertical; positive scrolls up (the content moves down).
    std::int32_t wheel1 = 0;
    /// Horizontal; positive scrolls left.
    std::int32_t wheel2 = 0;
    friend bool operator==(const ScrollEvent&, const ScrollEvent&) = default;
};

struct KeyEvent {
    /// A macOS virtual key code.
    std::uint16_t keycode = 0;
    /// Exactly the modifiers in force for this event, whatever else is held on the keyboard.
    EventFlags flags;
    bool isDown = false;
    friend bool operator==(const KeyEvent&, const KeyEvent&) = default;
};

/// Puts events into the input stream of the desktop, so that programs take them for a local mouse's and
/// keyboard's. What the pointer does arrives in the order in which it is posted, and so does what the
/// keyboard does. Text may take a while, and what is posted to the keyboard meanwhile waits for it. Main
/// thread only.
///
/// The post functions return false when the event cannot be created, and then nothing was posted.
class EventPoster {
  public:
    /// The most displays that activeDisplays() tells.
    static constexpr std::size_t maximumDisplays = 16;
    /// The most UTF-16 units that one postUnicode() takes.
    static constexpr std::size_t maximumUnicodeUnits = 20;

    EventPoster() = default;
    EventPoster(const EventPoster&) = delete;
    EventPoster& operator=(const EventPoster&) = delete;
    virtual ~EventPoster() = default;

    /// Where the pointer is, after everything posted so far; (0, 0) when that cannot be told.
    [[nodiscard]] virtual Point pointerLocation() = 0;
    /// The displays that are on, at most maximumDisplays, valid until the next call; empty when there is none
    /// or they cannot be told.
    [[nodiscard]] virtual std::span<const Rect> activeDisplays() = 0;
    [[nodiscard]] virtual Rect mainDisplay() = 0;

    /// Tells that this valid UTF-8 text is typed next, character by character, on keys and as Unicode. A
    /// poster that first has to make characters ready can do so for all of them at once.
    virtual void expectText(std::string_view /*text*/) {}

    virtual bool postMouse(const MouseEvent& event) = 0;
    virtual bool postScroll(const ScrollEvent& event) = 0;
    virtual bool postKey(const KeyEvent& event) = 0;
    /// Types text that need not be on any key: at most maximumUnicodeUnits UTF-16 units, first with isDown,
    /// then the same units without. A character may be cut over several such pairs.
    virtual bool postUnicode(std::u16string_view units, bool isDown) = 0;
    /// Drops what waits, except that keys whose release waits are released now, and forgets what was less
    /// than this poster's smallest scroll.
    virtual void dropWaiting() = 0;
};

}  // namespace orbinex
