#include "input/x11/x11_keyboard.h"

#include <algorithm>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace orbinex {

namespace {

/// The keys of the number pad whose meaning Num Lock changes; on the phone's keyboard they are always digits.
bool isNumberPadKey(std::uint16_t macKeycode) {
    return macKeycode == 65 || macKeycode == 95 || (macKeycode >= 82 && macKeycode <= 92 && macKeycode != 90);
}

}  // namespace

void X11Keyboard::ModifierKeys::add(XKeycode keycode) {
    const auto present = all();
    if (keycode == 0 || count == keys.size() || std::ranges::find(present, keycode) != present.end()) return;
    keys[count++] = keycode;
}

X11Keyboard::X11Keyboard(X11Connection& connection, HeldLedger& ledger, CommandKey commandKey)
    : connection_(connection), ledger_(ledger), commandKey_(commandKey) {
    holds_.reserve(256);
    borrowed_.reserve(ModifierKeys{}.keys.size());
    if (!connection_.isAlive()) return;
    XkbSelectEvents(connection_.display(), XkbUseCoreKbd, XkbNewKeyboardNotifyMask | XkbMapNotifyMask,
                    XkbNewKeyboardNotifyMask | XkbMapNotifyMask);
    events_ = connection_.onEvent([this](XEvent* const& event) { noteEvent(*event); });
}

void X11Keyboard::noteEvent(const XEvent& event) {
    if (event.type != connection_.xkbEventBase()) return;
    const auto& xkb = reinterpret_cast<const XkbEvent&>(event);
    if (xkb.any.xkb_type == XkbNewKeyboardNotify) keymapIsStale_ = true;
    if (xkb.any.xkb_type == XkbMapNotify &&
        std::ranges::find(ownChanges_, xkb.any.serial) == ownChanges_.end()) {
        keymapIsStale_ = true;
    }
}

bool X11Keyboard::readKeymap() {
    if (!connection_.isAlive()) return false;
    connection_.processEvents();
    if (!keymapIsStale_) return true;
    auto keymap = X11Keymap::read(connection_);
    if (!keymap) return keymap_.has_value();
    keymap_ = std::move(keymap);
    keymapIsStale_ = false;
    findSpareKeys();
    return true;
}

void X11Keyboard::findSpareKeys() {
    std::vector<XKeycode> spare;
    for (unsigned code = keymap_->firstKeycode(); code <= keymap_->lastKeycode(); ++code) {
        const auto keycode = static_cast<XKeycode>(code);
        if (keymap_->hasPlace(keycode) || keymap_->modifiersOf(keycode) != 0) continue;
        const auto keysym = keymap_->onlyKeysym(keycode);
        const auto keys = pool_.keys();
        const auto known = std::ranges::find(keys, keycode, &SpareKeyPool::Key::keycode);
        const XKeysym lent = known == keys.end() ? 0 : known->keysym;
        if (keysym == NoSymbol) {
            pool_.forget(keycode);
            ledger_.letGo(HeldItem::Kind::spareKey, keycode);
        }
        if (keysym && (*keysym == NoSymbol || *keysym == lent)) spare.push_back(keycode);
    }
    pool_.setKeycodes(spare);
}

XkbStateRec X11Keyboard::state() const {
    XkbStateRec state{};
    XkbGetState(connection_.display(), XkbUseCoreKbd, &state);
    return state;
}

XKeycode X11Keyboard::modifierKeyOf(ModifierKey key, unsigned group) const {
    const auto keyOf = [&](std::initializer_list<XKeysym> keysyms) {
        for (const XKeysym keysym : keysyms) {
            if (const XKeycode keycode = keymap_->modifierKeycode(keysym, group)) return keycode;
        }
        return XKeycode{0};
    };
    const bool commandIsControl = commandKey_ == CommandKey::control;
    switch (key) {
        case ModifierKey::leftShift: return keyOf({XK_Shift_L, XK_Shift_R});
        case ModifierKey::rightShift: return keyOf({XK_Shift_R, XK_Shift_L});
        case ModifierKey::leftControl: return keyOf({XK_Control_L, XK_Control_R});
        case ModifierKey::rightControl: return keyOf({XK_Control_R, XK_Control_L});
        case ModifierKey::leftOption: return keyOf({XK_Alt_L, XK_Meta_L, XK_Alt_R});
        case ModifierKey::rightOption: return keyOf({XK_ISO_Level3_Shift, XK_Alt_R, XK_Alt_L});
        case ModifierKey::leftCommand:
            return commandIsControl ? keyOf({XK_Control_L, XK_Control_R}) : keyOf({XK_Super_L, XK_Super_R});
        case ModifierKey::rightCommand:
            return commandIsControl ? keyOf({XK_Control_R, XK_Control_L}) : keyOf({XK_Super_R, XK_Super_L});
    }
    return 0;
}

XKeycode X11Keyboard::keyOf(std::uint16_t macKeycode, unsigned group) const {
    // The right option key is the third level's key where the keyboard has one in its place.
    if (const auto modifier = modifierKey(macKeycode); modifier && modifier != ModifierKey::rightOption) {
        return modifierKeyOf(*modifier, group);
    }
    const auto key = pcKey(macKeycode);
    return key ? keymap_->keycode(*key) : XKeycode{0};
}

XKeycode X11Keyboard::optionKeyFor(EventFlags flags, XKeycode keycode, unsigned group) const {
    const XKeycode alt = modifierKeyOf(ModifierKey::leftOption, group);
    // With control or command it is a shortcut, and shortcuts are made with Alt.
    if (flags.contains(EventFlags::control) || flags.contains(EventFlags::command)) return alt;
    const XKeycode thirdLevelKey = keymap_->modifierKeycode(XK_ISO_Level3_Shift, group);
    if (thirdLevelKey == 0) return alt;
    const XModifiers shift = flags.contains(EventFlags::shift) ? xShiftModifier : XModifiers{0};
    const XModifiers thirdLevel = keymap_->modifiersOf(thirdLevelKey);
    const XKeysym keysym = keymap_->keysym(keycode, group, static_cast<XModifiers>(shift | thirdLevel));
    const bool isOwn = keysym != NoSymbol && keysym != keymap_->keysym(keycode, group, 0) &&
                       keysym != keymap_->keysym(keycode, group, xShiftModifier);
    return isOwn ? thirdLevelKey : alt;
}

X11Keyboard::ModifierKeys X11Keyboard::keysFor(EventFlags flags, XKeycode keycode, unsigned group) const {
    ModifierKeys keys;
    if (flags.contains(EventFlags::shift)) keys.add(modifierKeyOf(ModifierKey::leftShift, group));
    if (flags.contains(EventFlags::control)) keys.add(modifierKeyOf(ModifierKey::leftControl, group));
    if (flags.contains(EventFlags::command)) keys.add(modifierKeyOf(ModifierKey::leftCommand, group));
    if (flags.contains(EventFlags::option)) keys.add(optionKeyFor(flags, keycode, group));
    return keys;
}

bool X11Keyboard::press(std::uint16_t macKeycode, EventFlags flags) {
    if (!readKeymap()) return false;
    const XkbStateRec now = state();
    const XKeycode keycode = keyOf(macKeycode, now.group);
    if (keycode == 0) return false;

    const auto earlier = std::ranges::find(holds_, macKeycode, &Hold::macKeycode);
    // The keyboard has changed since: what was pressed then must not stay down.
    if (earlier != holds_.end() && earlier->keycode != keycode) release(macKeycode);

    // Lock keys are among them: what they do must stay.
    const bool isModifier = keymap_->modifiersOf(keycode) != 0;
    if (isModifier) {
        const auto lent = std::ranges::find(borrowed_, keycode);
        if (lent != borrowed_.end()) {
            borrowed_.erase(lent);
        } else if (!isHeldByPhone(keycode) && !pressModifier(keycode)) {
            return false;
        }
    } else if (!pressExactly(keycode, Press::toHold, keysFor(flags, keycode, now.group),
                             isNumberPadKey(macKeycode), now)) {
        return false;
    }
    const bool isKnown =
        std::ranges::any_of(holds_, [&](const Hold& hold) { return hold.macKeycode == macKeycode; });
    if (!isKnown) holds_.push_back({macKeycode, keycode});
    return connection_.flush();
}

bool X11Keyboard::release(std::uint16_t macKeycode) {
    if (!connection_.isAlive()) return false;
    const auto hold = std::ranges::find(holds_, macKeycode, &Hold::macKeycode);
    if (hold == holds_.end()) return true;
    const XKeycode keycode = hold->keycode;
    holds_.erase(hold);
    // Two keys of the phone may be one here, such as command and control.
    if (!isHeldByPhone(keycode)) letGo(keycode);
    if (keycode == borrower_) returnBorrowed();
    return connection_.flush();
}

X11Keyboard::Typed X11Keyboard::type(char32_t scalar, std::chrono::nanoseconds now) {
    const XKeysym keysym = keysymOfScalar(scalar);
    if (keysym == NoSymbol || !readKeymap()) return Typed::impossible;
    const XkbStateRec before = state();
    XKeycode keycode = 0;
    ModifierKeys modifiers;
    if (const auto key = keymap_->find(scalar == U'\n' ? U'\r' : scalar, before.group)) {
        keycode = key->keycode;
        if ((key->modifiers & xShiftModifier) != 0)
            modifiers.add(modifierKeyOf(ModifierKey::leftShift, before.group));
        if ((key->modifiers & ~xShiftModifier) != 0) {
            modifiers.add(keymap_->modifierKeycode(XK_ISO_Level3_Shift, before.group));
        }
    } else {
        const auto loan = pool_.lend(keysym, now);
        if (!loan) return pool_.keys().empty() ? Typed::impossible : Typed::later;
        if (loan->needsMapping && !lendTo(*loan, keysym)) return Typed::impossible;
        keycode = loan->keycode;
    }
    const bool isHeld = isHeldByPhone(keycode);
    if (!pressExactly(keycode, isHeld ? Press::toHold : Press::toLetGo, modifiers, false, before))
        return Typed::impossible;
    if (!isHeld) letGo(keycode);
    returnBorrowed();
    return connection_.flush() ? Typed::done : Typed::impossible;
}

void X11Keyboard::expect(std::u32string_view scalars, std::chrono::nanoseconds now) {
    if (!readKeymap()) return;
    const unsigned group = state().group;
    for (const char32_t scalar : scalars) {
        const XKeysym keysym = keysymOfScalar(scalar);
        if (keysym == NoSymbol || scalar < U' ' || keymap_->find(scalar, group)) continue;
        const auto loan = pool_.lend(keysym, now);
        if (!loan || (loan->needsMapping && !lendTo(*loan, keysym))) return;
    }
}

bool X11Keyboard::lendTo(const SpareKeyPool::Loan& loan, XKeysym keysym) {
    if (!ledger_.hold({HeldItem::Kind::spareKey, loan.keycode, keysym})) {
        pool_.forget(loan.keycode);
        return false;
    }
    // The same on both levels, so that a Shift that comes in between changes nothing.
    KeySym symbols[2] = {keysym, keysym};
    ownChanges_[nextOwnChange_++ % ownChanges_.size()] = NextRequest(connection_.display());
    XChangeKeyboardMapping(connection_.display(), loan.keycode, 2, symbols, 1);
    return true;
}

void X11Keyboard::endLoans() {
    if (!connection_.isAlive()) return;
    pool_.endLoans([this](XKeycode keycode) {
        KeySym none[2] = {NoSymbol, NoSymbol};
        ownChanges_[nextOwnChange_++ % ownChanges_.size()] = NextRequest(connection_.display());
        XChangeKeyboardMapping(connection_.display(), keycode, 2, none, 1);
        ledger_.letGo(HeldItem::Kind::spareKey, keycode);
    });
}

void X11Keyboard::releaseAll() {
    if (!connection_.isAlive()) return;
    for (const Hold& hold : holds_) letGo(hold.keycode);
    holds_.clear();
    returnBorrowed();
    endLoans();
}

bool X11Keyboard::isHeldByPhone(XKeycode keycode) const {
    return std::ranges::any_of(holds_, [&](const Hold& hold) { return hold.keycode == keycode; });
}

}  // namespace orbinex
