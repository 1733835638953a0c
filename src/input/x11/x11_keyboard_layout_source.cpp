#include "input/x11/x11_keyboard_layout_source.h"

#include <bitset>
#include <map>
#include <string>
#include <utility>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>

#include "input/candidate_keycodes.h"
#include "input/x11/mac_keycodes.h"

namespace orbinex {

namespace {

constexpr XKeysym firstDeadKey = XK_dead_grave;
constexpr XKeysym lastDeadKey = XK_dead_longsolidusoverlay;

}  // namespace

/// The candidate keys of one group, with each of the four combinations of shift and option.
struct X11KeyboardLayoutSource::Keys {
    std::string name;
    std::map<std::pair<std::uint16_t, std::uint8_t>, KeyTranslation> translations;

    /// Which keys of the server they are.
    std::bitset<256> keycodes;

    [[nodiscard]] bool hasLatinLetters() const;
    /// False for a change of other keys' meanings, such as the ones that are lent to characters in turn.
    [[nodiscard]] bool isTouchedBy(const XkbMapNotifyEvent& change) const;
    static KeyboardLayout layout(const std::shared_ptr<const Keys>& keys);
    friend bool operator==(const Keys&, const Keys&) = default;
};

bool X11KeyboardLayoutSource::Keys::hasLatinLetters() const {
    int letters = 0;
    for (const auto& [key, translation] : translations) {
        const std::string& text = translation.text;
        if (key.second == 0 && text.size() == 1 && text[0] >= 'a' && text[0] <= 'z') ++letters;
    }
    return letters >= 26;
}

bool X11KeyboardLayoutSource::Keys::isTouchedBy(const XkbMapNotifyEvent& change) const {
    constexpr unsigned meanings = XkbKeySymsMask | XkbKeyActionsMask;
    if ((change.changed & ~meanings) != 0) return true;
    const auto touches = [this](int first, int count) {
        for (int code = first; code < first + count; ++code) {
            if (code >= 0 && code < 256 && keycodes.test(static_cast<std::size_t>(code))) return true;
        }
        return false;
    };
    return touches(change.first_key_sym, change.num_key_syms) ||
           touches(change.first_key_act, change.num_key_acts);
}

KeyboardLayout X11KeyboardLayoutSource::Keys::layout(const std::shared_ptr<const Keys>& keys) {
    return {keys->name, [keys](std::uint16_t keycode, ModifierFlags modifiers) {
                const auto it = keys->translations.find({keycode, modifiers.rawValue});
                return it == keys->translations.end() ? KeyTranslation{} : it->second;
            }};
}

X11KeyboardLayoutSource::X11KeyboardLayoutSource(X11Connection& connection, MainQueue& queue)
    : connection_(connection), queue_(queue) {
    if (!connection_.isAlive()) return;
    Display* const display = connection_.display();
    XkbSelectEvents(display, XkbUseCoreKbd, XkbNewKeyboardNotifyMask | XkbMapNotifyMask,
                    XkbNewKeyboardNotifyMask | XkbMapNotifyMask);
    // Only the group, for otherwise every modifier key would wake us.
    XkbSelectEventDetails(display, XkbUseCoreKbd, XkbStateNotify, XkbGroupStateMask, XkbGroupStateMask);
    events_ = connection_.onEvent([this](XEvent* const& event) { noteEvent(*event); });
    current_ = readCurrent();
}

X11KeyboardLayoutSource::~X11KeyboardLayoutSource() = default;

void X11KeyboardLayoutSource::noteEvent(const XEvent& event) {
    if (event.type != connection_.xkbEventBase() || settling_.isActive()) return;
    const auto& xkb = reinterpret_cast<const XkbEvent&>(event);
    if (xkb.any.xkb_type == XkbMapNotify && current_ && !current_->isTouchedBy(xkb.map)) return;
    settling_ = queue_.after(settlingTime, [this] { lookAgain(); });
}

void X11KeyboardLayoutSource::lookAgain() {
    auto keys = readCurrent();
    connection_.processEvents();
    const bool isSame = keys && current_ ? *keys == *current_ : keys == current_;
    if (isSame) return;
    current_ = std::move(keys);
    changed_.emit();
}

std::shared_ptr<const X11KeyboardLayoutSource::Keys> X11KeyboardLayoutSource::readCurrent() const {
    const auto keymap = X11Keymap::read(connection_);
    if (!keymap) return nullptr;
    XkbStateRec state{};
    if (XkbGetState(connection_.display(), XkbUseCoreKbd, &state) != Success) return nullptr;
    return readGroup(*keymap, state.group);
}

std::shared_ptr<const X11KeyboardLayoutSource::Keys> X11KeyboardLayoutSource::readGroup(
    const X11Keymap& keymap, unsigned group) const {
    auto keys = std::make_shared<Keys>();
    keys->name = keymap.groupName(group);
    const XKeycode thirdLevelKey = keymap.modifierKeycode(XK_ISO_Level3_Shift, group);
    const XModifiers thirdLevel = thirdLevelKey != 0 ? keymap.modifiersOf(thirdLevelKey) : XModifiers{0};
    keys->keycodes.set(thirdLevelKey);
    for (const std::uint16_t code : candidateKeycodes) {
        const auto place = pcKey(code);
        const XKeycode keycode = place ? keymap.keycode(*place) : XKeycode{0};
        if (keycode == 0) continue;
        keys->keycodes.set(keycode);
        for (const ModifierFlags modifiers : {ModifierFlags{}, ModifierFlags::shift, ModifierFlags::option,
                                              ModifierFlags::shift | ModifierFlags::option}) {
            XModifiers held = modifiers.contains(ModifierFlags::shift) ? xShiftModifier : XModifiers{0};
            if (modifiers.contains(ModifierFlags::option)) held |= thirdLevel;
            const XKeysym keysym = keymap.keysym(keycode, group, held);
            KeyTranslation translation;
            if (keysym >= firstDeadKey && keysym <= lastDeadKey) {
                translation.kind = KeyTranslation::Kind::deadKey;
            } else if (auto text = keymap.text(keycode, group, held); !text.empty()) {
                translation = {KeyTranslation::Kind::text, std::move(text)};
            }
            keys->translations[{code, modifiers.rawValue}] = std::move(translation);
        }
    }
    return keys;
}

std::optional<KeyboardLayout> X11KeyboardLayoutSource::currentLayout() {
    return current_ ? std::optional(Keys::layout(current_)) : std::nullopt;
}

std::optional<KeyboardLayout> X11KeyboardLayoutSource::asciiCapableLayout() {
    const auto keymap = X11Keymap::read(connection_);
    if (!keymap) return std::nullopt;
    for (unsigned group = 0; group < keymap->groupCount(); ++group) {
        const auto keys = readGroup(*keymap, group);
        if (keys->hasLatinLetters()) return Keys::layout(keys);
    }
    return std::nullopt;
}

Subscription X11KeyboardLayoutSource::onLayoutChange(std::function<void()> observer) {
    return changed_.subscribe(std::move(observer));
}

}  // namespace orbinex
