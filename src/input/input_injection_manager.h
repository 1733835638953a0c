#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "input/event_poster.h"
#include "input/keyboard_layout_mapper.h"
#include "input/scroll_accumulator.h"
#include "protocol/input_packet.h"

namespace orbinex {

/// Turns the phone's input packets into events of the desktop, and knows what it holds down so that it can
/// let go of everything. Main thread only. Moves, clicks, scrolls and key strokes allocate nothing.
class InputInjectionManager {
  public:
    /// Scroll units (pixels) for one unit of a packet's delta.
    static constexpr double scrollScale = 10.0;

    /// Called after a pressed key stroke was posted, with its key code and the packet's modifiers.
    std::function<void(std::uint16_t keycode, ModifierFlags modifiers)> onTransportKey;

    /// Builds the table of the keyboard layout at once. Both must outlive the manager.
    InputInjectionManager(EventPoster& poster, KeyboardLayoutSource& layouts);

    /// Posts the events of a packet at once. An event that cannot be created is left out; the rest goes on.
    void handle(const DecodedPacket& packet);
    /// Drops what the poster has not carried out yet, lets go of every button and key that is held and
    /// forgets fractions of a scroll. Called when the link to the phone is lost.
    void releaseAll();

    [[nodiscard]] const KeyboardLayoutMapper& layoutMapper() const { return layoutMapper_; }
    /// True while a button is held by a press that has had no release.
    [[nodiscard]] bool isButtonDown(MouseButton button) const;
    /// True while a key-down of this key was posted and no key-up.
    [[nodiscard]] bool isKeyHeld(std::uint16_t keycode) const { return heldKeys_.test(keycode); }
    [[nodiscard]] bool holdsAnyKey() const { return heldKeys_.any(); }
    /// The scroll not yet posted, in scroll units.
    [[nodiscard]] double scrollRemainderX() const { return scrollX_.remainder(); }
    [[nodiscard]] double scrollRemainderY() const { return scrollY_.remainder(); }

  private:
    void movePointer(const DecodedPacket::MouseMove& move);
    void click(const DecodedPacket::MouseClick& click);
    void scroll(const DecodedPacket::MouseScroll& scroll);
    void strokeKey(const DecodedPacket::KeyStroke& stroke);
    void typeText(const DecodedPacket::Text& text);
    void setButton(const DecodedPacket::MouseButtonChange& change);

    void postButton(MouseButton button, bool isDown, Point location, std::int64_t clickState);
    void postKey(std::uint16_t keycode, EventFlags flags, bool isDown);
    void tapKey(std::uint16_t keycode, EventFlags flags);
    void typeCharacter(std::string_view character, ModifierFlags modifiers,
                       std::optional<std::uint16_t> fallbackKeycode);
    void typeUnicode(std::string_view text);

    EventPoster& poster_;
    KeyboardLayoutMapper layoutMapper_;
    bool leftButtonDown_ = false;
    bool rightButtonDown_ = false;
    /// One bit for every key code: a press costs no allocation, however many keys a phone claims to hold.
    std::bitset<65536> heldKeys_;
    ScrollAccumulator scrollX_;
    ScrollAccumulator scrollY_;
};

}  // namespace orbinex
