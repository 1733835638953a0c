// How X11Keyboard makes the modifiers of one key press exact and puts everything back.

#include <algorithm>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include "input/x11/x11_keyboard.h"

namespace orbinex {

namespace {

constexpr unsigned allModifiers = 0xFF;

bool isDown(const std::array<char, 32>& keys, unsigned keycode) {
    return (static_cast<unsigned>(static_cast<unsigned char>(keys[keycode / 8])) >> (keycode % 8) & 1U) != 0;
}

}  // namespace

void X11Keyboard::send(XKeycode keycode, bool isDown) {
    XTestFakeKeyEvent(connection_.display(), keycode, isDown ? True : False, CurrentTime);
}

bool X11Keyboard::pressModifier(XKeycode keycode) {
    if (!ledger_.hold({HeldItem::Kind::key, keycode, 0})) return false;
    // The server's test keyboard may still have the key down, when a person let go of the key while we had
    // pressed it for them; it ignores a second press of a modifier.
    send(keycode, false);
    send(keycode, true);
    return true;
}

void X11Keyboard::letGo(XKeycode keycode) {
    send(keycode, false);
    ledger_.letGo(HeldItem::Kind::key, keycode);
}

void X11Keyboard::returnBorrowed() {
    for (const XKeycode keycode : borrowed_) letGo(keycode);
    borrowed_.clear();
    borrower_ = 0;
}

void X11Keyboard::pressOnce(XKeycode keycode) {
    Display* const display = connection_.display();
    // Whether a key repeats is decided as it is pressed, by a setting that the keyboards of a focus share: it
    // is changed for just this one press, and no key that a person holds stops repeating. The question sends
    // what is buffered, so that the rest goes to the server in one piece, whatever becomes of us meanwhile.
    XkbControlsRec controls{};
    XkbDescRec keyboard{};
    keyboard.device_spec = XkbUseCoreKbd;
    keyboard.ctrls = &controls;
    const bool repeats = XkbGetControls(display, XkbControlsEnabledMask, &keyboard) == Success &&
                         (controls.enabled_ctrls & XkbRepeatKeysMask) != 0;
    if (repeats) XkbChangeEnabledControls(display, XkbUseCoreKbd, XkbRepeatKeysMask, 0);
    // Without this the server would take a second press for repetition, and ignore it.
    if (isHeldByPhone(keycode)) send(keycode, false);
    send(keycode, true);
    if (repeats) XkbChangeEnabledControls(display, XkbUseCoreKbd, XkbRepeatKeysMask, XkbRepeatKeysMask);
}

bool X11Keyboard::pressExactly(XKeycode keycode, Press kind, const ModifierKeys& wanted, bool wantsNumLock,
                               const XkbStateRec& state) {
    XModifiers mask = 0;
    for (const XKeycode key : wanted.all()) mask |= keymap_->modifiersOf(key);

    std::vector<XKeycode> lifted;
    liftModifiers(mask, state, lifted);
    const bool hasChangedLocks = setLocks(state, wantsNumLock);
    const bool canPress =
        borrowModifiers(wanted, state.base_mods) && ledger_.hold({HeldItem::Kind::key, keycode, 0});
    if (canPress) {
        if (kind == Press::toHold) {
            pressOnce(keycode);
        } else {
            send(keycode, true);
        }
        borrower_ = keycode;
    } else {
        returnBorrowed();
    }
    if (hasChangedLocks) restoreLocks(state);
    for (const XKeycode key : lifted) {
        send(key, false);
        send(key, true);
    }
    return canPress;
}

void X11Keyboard::liftModifiers(XModifiers wanted, const XkbStateRec& state, std::vector<XKeycode>& lifted) {
    // Caps Lock and Num Lock work by having been pressed, not by being down.
    const auto unwanted =
        static_cast<XModifiers>(state.base_mods & ~wanted & ~xLockModifier & ~keymap_->numLock());
    if (unwanted == 0) return;
    std::array<char, 32> down{};
    XQueryKeymap(connection_.display(), down.data());
    for (unsigned code = keymap_->firstKeycode(); code <= keymap_->lastKeycode(); ++code) {
        const auto keycode = static_cast<XKeycode>(code);
        if ((keymap_->modifiersOf(keycode) & unwanted) == 0 || !isDown(down, code)) continue;
        if (const auto own = std::ranges::find(borrowed_, keycode); own != borrowed_.end()) {
            borrowed_.erase(own);
            letGo(keycode);
        } else {
            send(keycode, false);
            lifted.push_back(keycode);
        }
    }
}

bool X11Keyboard::borrowModifiers(const ModifierKeys& wanted, XModifiers present) {
    for (const XKeycode key : wanted.all()) {
        if ((keymap_->modifiersOf(key) & ~present) == 0) continue;
        if (!pressModifier(key)) return false;
        borrowed_.push_back(key);
    }
    return true;
}

bool X11Keyboard::setLocks(const XkbStateRec& state, bool wantsNumLock) {
    Display* const display = connection_.display();
    if (state.latched_mods != 0) XkbLatchModifiers(display, XkbUseCoreKbd, allModifiers, 0);
    const unsigned kept = state.locked_mods & keymap_->numLock();
    const unsigned locks = wantsNumLock ? keymap_->numLock() : kept;
    if (locks != state.locked_mods) XkbLockModifiers(display, XkbUseCoreKbd, allModifiers, locks);
    return state.latched_mods != 0 || locks != state.locked_mods;
}

void X11Keyboard::restoreLocks(const XkbStateRec& state) {
    Display* const display = connection_.display();
    XkbLockModifiers(display, XkbUseCoreKbd, allModifiers, state.locked_mods);
    if (state.latched_mods != 0)
        XkbLatchModifiers(display, XkbUseCoreKbd, state.latched_mods, state.latched_mods);
}

}  // namespace orbinex
