#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <variant>

#include "base/main_queue.h"
#include "input/event_poster.h"
#include "input/scroll_sink.h"
#include "input/wheel_clicks.h"
#include "input/x11/click_run.h"
#include "input/x11/held_ledger.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_device_watch.h"
#include "input/x11/x11_displays.h"
#include "input/x11/x11_keyboard.h"
#include "input/x11/x11_pointer.h"

namespace orbinex {

/// Posts events into an X server through its XTEST extension.
///
/// Text that needs more spare keys than the keyboard has at the moment waits for them, and whatever the
/// keyboard is to do after it waits behind it; the pointer waits for nothing. What is held in the server is
/// written down there too, so that the next start releases what a process that was killed has left behind.
class X11EventPoster final : public EventPoster {
  public:
    struct Options {
        CommandKey commandKey = CommandKey::control;
        /// Takes the scrolling while the server takes input from it; must outlive the poster.
        ScrollSink* scrollSink = nullptr;
    };
    /// Characters and keys that may wait; more than this are refused, except releases.
    static constexpr std::size_t maximumWaiting = 10'000;
    /// How long the keyboard rests before spare keys lose their characters again.
    static constexpr std::chrono::milliseconds restTime{300};

    /// The connection and the queue must outlive the poster.
    X11EventPoster(X11Connection& connection, MainQueue& queue, Options options);
    X11EventPoster(X11Connection& connection, MainQueue& queue);
    /// Releases everything.
    ~X11EventPoster() override;

    [[nodiscard]] Point pointerLocation() override { return pointer_.location(); }
    [[nodiscard]] std::span<const Rect> activeDisplays() override { return displays_.active(); }
    [[nodiscard]] Rect mainDisplay() override { return displays_.main(); }
    void expectText(std::string_view text) override;
    bool postMouse(const MouseEvent& event) override;
    bool postScroll(const ScrollEvent& event) override;
    /// False also for keys that a PC keyboard does not have, such as fn.
    bool postKey(const KeyEvent& event) override;
    /// Types on the way down; a character that is cut over two calls is typed with the second.
    bool postUnicode(std::u16string_view units, bool isDown) override;
    void dropWaiting() override;

    /// Drops what waits, lets go of every key and button and gives the keyboard map back as it was. For the
    /// end of the program, also by a signal. A program that has not yet handled the last characters of spare
    /// keys may miss them.
    void releaseEverything();

  private:
    /// What the keyboard is to do.
    using Operation = std::variant<KeyEvent, char32_t>;
    enum class Outcome { done, failed, later };

    [[nodiscard]] bool canPost() const { return connection_.isAlive() && connection_.hasXTest(); }
    bool send();
    bool post(const Operation& operation);
    bool enqueue(const Operation& operation);
    void continueWaiting();
    Outcome perform(const KeyEvent& event);
    Outcome perform(char32_t scalar);
    bool perform(const MouseEvent& event);
    bool pressButton(unsigned button);
    void releaseButton(unsigned button);
    void click(unsigned button, int times);
    void wheel(int clicks, unsigned positiveButton, unsigned negativeButton);
    void noteKeyboardUse();
    void restIfUnused();

    X11Connection& connection_;
    MainQueue& queue_;
    HeldLedger ledger_;
    X11Displays displays_;
    X11Pointer pointer_;
    X11Keyboard keyboard_;
    ClickRun clickRun_;
    ScrollSink* scrollSink_;
    /// Follows the sink's device; nothing without one.
    std::optional<X11DeviceWatch> scrollDevice_;
    WheelClicks vertical_;
    WheelClicks horizontal_;

    std::deque<Operation> waiting_;
    /// The first half of a character that the next call completes.
    char16_t highSurrogate_ = 0;
    Timer retry_;
    Timer rest_;
    std::chrono::nanoseconds lastKeyboardUse_{0};
};

}  // namespace orbinex
