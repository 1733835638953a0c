#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "input/x11/x11_keymap.h"

namespace orbinex {

/// Lends keys that mean nothing on the keyboard to characters that no key gives. A program looks a key up in
/// the map that is in force when it handles the event, not when the key was pressed; so a key keeps its
/// character for a while after its last use.
class SpareKeyPool {
  public:
    using Time = std::chrono::nanoseconds;
    /// How long programs are given to handle a key press.
    static constexpr std::chrono::milliseconds safeTime{100};

    struct Loan {
        XKeycode keycode = 0;
        /// False when the key already gives the character.
        bool needsMapping = false;
    };

    struct Key {
        XKeycode keycode = 0;
        /// What the key gives at present; 0 for nothing.
        XKeysym keysym = 0;
        std::optional<Time> lastUse;
    };

    /// Takes this set of keys. Those that were there keep their loans; the others start without one.
    void setKeycodes(std::span<const XKeycode> keycodes);

    /// A key for the keysym, marked as used now: the one that has it, else the one that rests longest.
    /// Nothing while every key was used within the safe time, or when there is no key.
    std::optional<Loan> lend(XKeysym keysym, Time now);
    /// When the next key can be lent anew; nothing when there is none.
    [[nodiscard]] std::optional<Time> nextFree() const;
    /// Calls `giveBack` for every key with a loan and ends the loans.
    void endLoans(const std::function<void(XKeycode)>& giveBack);
    /// Ends the loan of a key whose meaning somebody else has changed.
    void forget(XKeycode keycode);

    [[nodiscard]] std::span<const Key> keys() const { return keys_; }

  private:
    std::vector<Key> keys_;
};

}  // namespace orbinex
