#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/signal.h"
#include "input/command_key.h"
#include "input/event_flags.h"
#include "input/x11/held_ledger.h"
#include "input/x11/spare_key_pool.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_keymap.h"

namespace orbinex {

/// Presses keys of an X server so that programs see exactly the modifiers that are asked for, and types
/// characters that no key gives. Modifiers that a person or somebody else holds, latches or locks are taken
/// away just for the press. The modifiers that a press needs stay down as long as its key or until the next
/// one. The server does not repeat what is pressed here: a press is one press, however long its release
/// takes.
class X11Keyboard {
  public:
    /// Both must outlive the keyboard.
    X11Keyboard(X11Connection& connection, HeldLedger& ledger, CommandKey commandKey);

    /// False for a key that this keyboard does not have. A key that is already down is released and pressed
    /// again, as by its own repetition.
    bool press(std::uint16_t macKeycode, EventFlags flags);
    /// True when the key is up afterwards, also when it was not down.
    bool release(std::uint16_t macKeycode);

    enum class Typed {
        done,
        /// Every spare key is in use; try again at nextFree().
        later,
        /// No key can give this character.
        impossible,
    };
    Typed type(char32_t scalar, std::chrono::nanoseconds now);
    /// Lends spare keys to those of these characters that need one, as far as there are any at the moment. A
    /// program that reads the keyboard map for the first time as it handles its first key, as Xlib does, can
    /// miss what changes meanwhile; so nothing should change within a text.
    void expect(std::u32string_view scalars, std::chrono::nanoseconds now);
    [[nodiscard]] std::optional<std::chrono::nanoseconds> nextFree() const { return pool_.nextFree(); }

    /// Takes back the characters that were lent to spare keys.
    void endLoans();
    void releaseAll();

  private:
    /// A key that the phone holds.
    struct Hold {
        std::uint16_t macKeycode;
        XKeycode keycode;
    };
    /// At most shift, control, super, alt and the third level at once.
    struct ModifierKeys {
        std::array<XKeycode, 5> keys{};
        std::size_t count = 0;
        void add(XKeycode keycode);
        [[nodiscard]] std::span<const XKeycode> all() const { return std::span(keys).first(count); }
    };

    bool readKeymap();
    void noteEvent(const _XEvent& event);
    void findSpareKeys();
    [[nodiscard]] _XkbStateRec state() const;
    [[nodiscard]] XKeycode keyOf(std::uint16_t macKeycode, unsigned group) const;
    [[nodiscard]] XKeycode modifierKeyOf(ModifierKey key, unsigned group) const;
    [[nodiscard]] ModifierKeys keysFor(EventFlags flags, XKeycode keycode, unsigned group) const;
    [[nodiscard]] XKeycode optionKeyFor(EventFlags flags, XKeycode keycode, unsigned group) const;

    enum class Press {
        toLetGo,  ///< released at once
        toHold,   ///< released who knows when
    };
    bool pressExactly(XKeycode keycode, Press kind, const ModifierKeys& wanted, bool wantsNumLock,
                      const _XkbStateRec& state);
    void pressOnce(XKeycode keycode);
    void liftModifiers(XModifiers wanted, const _XkbStateRec& state, std::vector<XKeycode>& lifted);
    bool borrowModifiers(const ModifierKeys& wanted, XModifiers present);
    /// True when restoreLocks() has something to do.
    bool setLocks(const _XkbStateRec& state, bool wantsNumLock);
    void restoreLocks(const _XkbStateRec& state);
    bool pressModifier(XKeycode keycode);
    void send(XKeycode keycode, bool isDown);
    void letGo(XKeycode keycode);
    void returnBorrowed();
    bool lendTo(const SpareKeyPool::Loan& loan, XKeysym keysym);
    [[nodiscard]] bool isHeldByPhone(XKeycode keycode) const;

    X11Connection& connection_;
    HeldLedger& ledger_;
    CommandKey commandKey_;
    std::optional<X11Keymap> keymap_;
    bool keymapIsStale_ = true;
    /// Serial numbers of our latest keymap changes, to know their echoes from other people's changes.
    std::array<unsigned long, 64> ownChanges_{};
    std::size_t nextOwnChange_ = 0;
    SpareKeyPool pool_;
    std::vector<Hold> holds_;
    /// Modifier keys that we hold for the sake of the key pressed last.
    std::vector<XKeycode> borrowed_;
    XKeycode borrower_ = 0;
    Subscription events_;
};

}  // namespace orbinex
