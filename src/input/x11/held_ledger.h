#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "input/x11/x11_keymap.h"

namespace orbinex {

/// One thing that we hold in the X server and that would stay so if we just went away.
struct HeldItem {
    enum class Kind : std::uint8_t {
        key = 1,
        button = 2,
        /// A key without meaning of its own that was given a keysym for a while.
        spareKey = 3,
    };
    Kind kind = Kind::key;
    /// The keycode or the number of the button (1 to 9).
    std::uint8_t code = 0;
    /// What a spare key was given; 0 for the others.
    XKeysym keysym = 0;
    friend bool operator==(const HeldItem&, const HeldItem&) = default;
};

/// Two words an item: the kind in bits 8 to 15 and the code in bits 0 to 7, then the keysym. Words are what
/// Xlib takes for properties of format 32: the low 32 bits of an unsigned long each.
std::vector<unsigned long> encodeHeldItems(std::span<const HeldItem> items);
/// Leaves out items that cannot be: any client can write a property.
std::vector<HeldItem> decodeHeldItems(std::span<const unsigned long> words);

/// What we hold, written down where it outlives us: in a property of the root window, which ends with the
/// server, and which the next start reads. Every instance on a display has a slot of its own, claimed by a
/// selection that the server takes back when the instance ends, however it ends.
class HeldLedger {
  public:
    /// Instances on one display that can hold anything at the same time.
    static constexpr int slotCount = 8;

    /// Releases and restores what instances that are gone have left behind.
    explicit HeldLedger(X11Connection& connection);
    HeldLedger(const HeldLedger&) = delete;
    HeldLedger& operator=(const HeldLedger&) = delete;
    /// Gives the slot back. What is held must have been released.
    ~HeldLedger();

    /// Writes the item down, in the stream of requests: what is pressed after this call is in the ledger
    /// before it is down. False when there is no room, and then the item must not be pressed.
    bool hold(const HeldItem& item);
    /// Takes the item out once it has been released. The property is brought up to date later, by hold() or
    /// settle(): it may tell too much for a while, never too little.
    void letGo(HeldItem::Kind kind, std::uint8_t code);
    /// Brings the property up to date, and removes it when nothing is held.
    void settle();

    /// Everything that is held.
    [[nodiscard]] std::vector<HeldItem> items() const;

  private:
    /// An item in the property.
    struct Entry {
        HeldItem item;
        /// False when it has been let go of since.
        bool isHeld = true;
    };
    void claimSlot();
    void restore(unsigned long property);
    void undo(std::span<const HeldItem> items);
    void write();
    Entry* find(HeldItem::Kind kind, std::uint8_t code);

    X11Connection& connection_;
    unsigned long window_ = 0;
    /// The atom of our property; 0 when every slot is taken.
    unsigned long property_ = 0;
    std::vector<Entry> entries_;
    /// The words of the property; kept so that writing allocates nothing.
    std::vector<unsigned long> words_;
};

}  // namespace orbinex
