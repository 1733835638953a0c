#pragma once

#include <cstdint>
#include <optional>

#include "base/main_queue.h"
#include "input/geometry.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_displays.h"

namespace orbinex {

/// Moves the pointer of an X server, and knows where it is without waiting for an answer each time.
///
/// Asking the server costs more than moving the pointer. So every move is followed by a question whose answer
/// is read with a later move. Moves in between are sent as distances, which the server adds to where the
/// pointer really is: a mouse or a program that moves it too is never undone, it only becomes known a little
/// later. Where the exact place matters, near the edges of a display, and after a pause, the server is asked
/// first.
///
/// The server counts whole pixels; the fraction of where we sent the pointer is kept for as long as the
/// pointer stays there, so that small moves add up.
class X11Pointer {
  public:
    /// After this long without a move of ours, the server is asked.
    static constexpr std::chrono::milliseconds trustTime{50};
    /// Closer to the edge of its display than this many pixels, the pointer's place is asked for.
    static constexpr double edgeMargin = 100;
    /// How long after a press a window manager may still hold it back.
    static constexpr std::chrono::milliseconds holdTime{500};
    /// The most moves that an answer may take.
    static constexpr int maximumUnconfirmed = 16;

    /// All must outlive the pointer.
    X11Pointer(X11Connection& connection, X11Displays& displays, MainQueue& queue);
    X11Pointer(const X11Pointer&) = delete;
    X11Pointer& operator=(const X11Pointer&) = delete;
    ~X11Pointer();

    /// (0, 0) when the server does not answer.
    [[nodiscard]] Point location();
    /// The same, by asking now.
    [[nodiscard]] Point askLocation();
    /// Moves to a point of a display, as seen from the location that was told last. False when the server has
    /// gone.
    bool moveTo(Point target);
    /// A button is pressed where the pointer is. A window manager may hold the press back until it has
    /// decided which window gets it; until then the server tells the place of the press, whatever has been
    /// sent since, and carries that out afterwards.
    void notePress();

  private:
    struct Pixel {
        int x = 0;
        int y = 0;
        friend bool operator==(const Pixel&, const Pixel&) = default;
    };
    /// A question that has been sent, and the answer to it if nobody else moves the pointer.
    struct Question {
        unsigned sequence = 0;
        Pixel expected;
        int moves = 0;
    };

    static Pixel pixelOf(Point point);
    [[nodiscard]] bool isFarFromEdges(Point point);
    void send(bool isRelative, Pixel motion);
    void ask();
    void readAnswer();
    void take(Pixel actual, Pixel expected);

    X11Connection& connection_;
    X11Displays& displays_;
    MainQueue& queue_;
    xcb_connection_t* xcb_;
    /// Where the pointer is as far as we know, and the fraction that its pixel leaves out.
    Point location_;
    /// The location that was told last, or made by the last move, was not asked for: another program may have
    /// moved the pointer since, and only a motion from where it is leaves that as it is. What held when it
    /// was told holds for the move, however long that takes.
    bool isRemembered_ = false;
    /// When we last moved it; nothing before the first time.
    std::optional<std::chrono::nanoseconds> lastMove_;
    std::optional<Question> question_;
    struct Press {
        Pixel place;
        std::chrono::nanoseconds time;
    };
    /// The latest press of ours.
    std::optional<Press> press_;
};

}  // namespace orbinex
