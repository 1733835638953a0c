#pragma once

#include <chrono>
#include <memory>

#include "base/main_queue.h"
#include "base/signal.h"
#include "input/keyboard_layout_source.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_keymap.h"

namespace orbinex {

/// What is written on the keys of an X server's keyboard: the group that is selected at present. Option
/// stands for the shift to the third level. A change is told when something on the keys has changed, so other
/// people's business with the keyboard map, and our own, goes unnoticed.
class X11KeyboardLayoutSource final : public KeyboardLayoutSource {
  public:
    /// A change of layout comes as several events; this long after the first of them all have come.
    static constexpr std::chrono::milliseconds settlingTime{50};

    /// Both must outlive the source.
    X11KeyboardLayoutSource(X11Connection& connection, MainQueue& queue);
    ~X11KeyboardLayoutSource() override;

    [[nodiscard]] std::optional<KeyboardLayout> currentLayout() override;
    /// The first group that has the letters a to z.
    [[nodiscard]] std::optional<KeyboardLayout> asciiCapableLayout() override;
    [[nodiscard]] Subscription onLayoutChange(std::function<void()> observer) override;

  private:
    struct Keys;
    void noteEvent(const _XEvent& event);
    void lookAgain();
    [[nodiscard]] std::shared_ptr<const Keys> readGroup(const X11Keymap& keymap, unsigned group) const;
    [[nodiscard]] std::shared_ptr<const Keys> readCurrent() const;

    X11Connection& connection_;
    MainQueue& queue_;
    /// The keys of the current layout; none when the server does not answer.
    std::shared_ptr<const Keys> current_;
    Signal<> changed_;
    Timer settling_;
    Subscription events_;
};

}  // namespace orbinex
