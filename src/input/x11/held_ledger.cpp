#include "input/x11/held_ledger.h"

#include <algorithm>
#include <array>
#include <string>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace orbinex {

namespace {

constexpr std::size_t capacity = 256;
constexpr std::uint8_t lastButton = 9;
constexpr std::uint8_t firstKeycode = 8;
constexpr unsigned long keysymLimit = 0x1FFFFFFF;

bool isPossible(const HeldItem& item) {
    switch (item.kind) {
        case HeldItem::Kind::key: return item.code >= firstKeycode && item.keysym == NoSymbol;
        case HeldItem::Kind::button:
            return item.code >= 1 && item.code <= lastButton && item.keysym == NoSymbol;
        case HeldItem::Kind::spareKey: return item.code >= firstKeycode && item.keysym != NoSymbol;
    }
    return false;
}

void append(std::vector<unsigned long>& words, const HeldItem& item) {
    words.push_back(static_cast<unsigned long>(item.kind) << 8 | item.code);
    words.push_back(item.keysym);
}

/// Up to the capacity of a ledger; empty for a property of any other shape.
std::vector<unsigned long> readWords(Display* display, Window root, Atom property) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    std::vector<unsigned long> words;
    if (XGetWindowProperty(display, root, property, 0, static_cast<long>(2 * capacity), False, XA_CARDINAL,
                           &type, &format, &count, &rest, &data) != Success) {
        return words;
    }
    if (data && type == XA_CARDINAL && format == 32 && rest == 0) {
        const auto* first = reinterpret_cast<const unsigned long*>(data);
        words.assign(first, first + count);
    }
    if (data) XFree(data);
    return words;
}

/// True while the key has just the keysym that it was lent.
bool hasOnly(Display* display, XKeycode keycode, XKeysym keysym) {
    int width = 0;
    KeySym* const symbols = XGetKeyboardMapping(display, keycode, 1, &width);
    if (!symbols) return false;
    const bool result = std::all_of(symbols, symbols + width,
                                    [&](KeySym symbol) { return symbol == NoSymbol || symbol == keysym; });
    XFree(symbols);
    return result;
}

}  // namespace

std::vector<unsigned long> encodeHeldItems(std::span<const HeldItem> items) {
    std::vector<unsigned long> words;
    for (const HeldItem& item : items) append(words, item);
    return words;
}

std::vector<HeldItem> decodeHeldItems(std::span<const unsigned long> words) {
    std::vector<HeldItem> items;
    for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
        if (words[i] >> 16 != 0 || words[i + 1] > keysymLimit) continue;
        const HeldItem item{static_cast<HeldItem::Kind>(words[i] >> 8),
                            static_cast<std::uint8_t>(words[i] & 0xFF), static_cast<XKeysym>(words[i + 1])};
        if (isPossible(item) && std::ranges::find(items, item) == items.end()) items.push_back(item);
    }
    return items;
}

HeldLedger::HeldLedger(X11Connection& connection) : connection_(connection) {
    entries_.reserve(capacity);
    words_.reserve(2 * capacity);
    if (connection_.isAlive()) claimSlot();
}

HeldLedger::~HeldLedger() {
    if (!connection_.isAlive()) return;
    settle();
    XDestroyWindow(connection_.display(), window_);
    connection_.flush();
}

void HeldLedger::claimSlot() {
    Display* const display = connection_.display();
    window_ = XCreateSimpleWindow(display, connection_.root(), -1, -1, 1, 1, 0, 0, 0);
    // Nobody else may come between the question for an owner and the claim.
    XGrabServer(display);
    for (int slot = 0; slot < slotCount; ++slot) {
        const std::string suffix = std::to_string(slot);
        const Atom selection = XInternAtom(display, ("_ORBINEX_INPUT_" + suffix).c_str(), False);
        if (XGetSelectionOwner(display, selection) != None) continue;
        const Atom property = XInternAtom(display, ("_ORBINEX_HELD_" + suffix).c_str(), False);
        restore(property);
        if (property_ == None) {
            XSetSelectionOwner(display, selection, window_, CurrentTime);
            property_ = property;
        }
    }
    XUngrabServer(display);
    connection_.flush();
}

void HeldLedger::restore(unsigned long property) {
    const auto words = readWords(connection_.display(), connection_.root(), property);
    undo(decodeHeldItems(words));
    XDeleteProperty(connection_.display(), connection_.root(), property);
}

void HeldLedger::undo(std::span<const HeldItem> items) {
    Display* const display = connection_.display();
    std::array<char, 32> down{};
    if (!items.empty()) XQueryKeymap(display, down.data());
    for (const HeldItem& item : items) {
        const unsigned code = item.code;
        switch (item.kind) {
            case HeldItem::Kind::key:
                if ((static_cast<unsigned>(down[code / 8]) >> (code % 8) & 1U) != 0) {
                    XTestFakeKeyEvent(display, code, False, CurrentTime);
                }
                break;
            case HeldItem::Kind::button: XTestFakeButtonEvent(display, code, False, CurrentTime); break;
            case HeldItem::Kind::spareKey:
                if (hasOnly(display, item.code, item.keysym)) {
                    KeySym none[2] = {NoSymbol, NoSymbol};
                    XChangeKeyboardMapping(display, static_cast<int>(code), 2, none, 1);
                }
                break;
        }
    }
}

HeldLedger::Entry* HeldLedger::find(HeldItem::Kind kind, std::uint8_t code) {
    const auto it = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return entry.item.kind == kind && entry.item.code == code; });
    return it == entries_.end() ? nullptr : &*it;
}

bool HeldLedger::hold(const HeldItem& item) {
    if (property_ == None || !connection_.isAlive()) return false;
    if (Entry* const entry = find(item.kind, item.code)) {
        entry->isHeld = true;
        if (entry->item == item) return true;
        entry->item = item;
    } else {
        std::erase_if(entries_, [](const Entry& other) { return !other.isHeld; });
        if (entries_.size() == capacity) return false;
        entries_.push_back({item, true});
    }
    write();
    return true;
}

void HeldLedger::letGo(HeldItem::Kind kind, std::uint8_t code) {
    if (Entry* const entry = find(kind, code)) entry->isHeld = false;
}

void HeldLedger::settle() {
    if (std::erase_if(entries_, [](const Entry& entry) { return !entry.isHeld; }) > 0) write();
}

void HeldLedger::write() {
    if (property_ == None || !connection_.isAlive()) return;
    if (entries_.empty()) {
        XDeleteProperty(connection_.display(), connection_.root(), property_);
        return;
    }
    words_.clear();
    for (const Entry& entry : entries_) append(words_, entry.item);
    XChangeProperty(connection_.display(), connection_.root(), property_, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(words_.data()), static_cast<int>(words_.size()));
}

std::vector<HeldItem> HeldLedger::items() const {
    std::vector<HeldItem> held;
    for (const Entry& entry : entries_) {
        if (entry.isHeld) held.push_back(entry.item);
    }
    return held;
}

}  // namespace orbinex
