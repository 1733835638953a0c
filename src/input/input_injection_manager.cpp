#include "input/input_injection_manager.h"

#include <cmath>
#include <string>
#include <variant>

#include "base/text.h"
#include "input/clamp_to_displays.h"

namespace orbinex {

namespace {

constexpr std::uint16_t returnKeycode = 36;
constexpr std::uint16_t tabKeycode = 48;

/// Text with one of these is a shortcut.
bool isShortcut(ModifierFlags modifiers) {
    return modifiers.contains(ModifierFlags::control) || modifiers.contains(ModifierFlags::command);
}

/// Nearest integer, halves away from zero, within the 64-bit range.
std::int64_t saturatingRound(double value) {
    constexpr double limit = 9223372036854775808.0;
    if (value >= limit) return INT64_MAX;
    if (value <= -limit) return INT64_MIN;
    return std::llround(value);
}

/// Line breaks and tabs are keys of every layout.
std::optional<std::uint16_t> fixedKeycode(std::string_view character) {
    if (character == "\n" || character == "\r" || character == "\r\n") return returnKeycode;
    if (character == "\t") return tabKeycode;
    return std::nullopt;
}

}  // namespace

InputInjectionManager::InputInjectionManager(EventPoster& poster, KeyboardLayoutSource& layouts)
    : poster_(poster), layoutMapper_(layouts) {}

void InputInjectionManager::handle(const DecodedPacket& packet) {
    struct Dispatch {
        InputInjectionManager& manager;
        void operator()(const DecodedPacket::MouseMove& move) const { manager.movePointer(move); }
        void operator()(const DecodedPacket::MouseClick& click) const { manager.click(click); }
        void operator()(const DecodedPacket::MouseScroll& scroll) const { manager.scroll(scroll); }
        void operator()(const DecodedPacket::KeyStroke& stroke) const { manager.strokeKey(stroke); }
        void operator()(const DecodedPacket::Text& text) const { manager.typeText(text); }
        void operator()(const DecodedPacket::MouseButtonChange& change) const { manager.setButton(change); }
    };
    std::visit(Dispatch{*this}, packet.value);
}

void InputInjectionManager::movePointer(const DecodedPacket::MouseMove& move) {
    const Point from = poster_.pointerLocation();
    MouseEvent event;
    event.location = clampToDisplays(
        {from.x + static_cast<double>(move.deltaX), from.y + static_cast<double>(move.deltaY)},
        poster_.activeDisplays(), poster_.mainDisplay());
    if (leftButtonDown_) {
        event.type = MouseEvent::Type::leftDragged;
    } else if (rightButtonDown_) {
        event.type = MouseEvent::Type::rightDragged;
        event.button = MouseButton::right;
    }
    event.deltaX = saturatingRound(static_cast<double>(move.deltaX));
    event.deltaY = saturatingRound(static_cast<double>(move.deltaY));
    poster_.postMouse(event);
}

void InputInjectionManager::click(const DecodedPacket::MouseClick& click) {
    const Point location = poster_.pointerLocation();
    postButton(click.button, true, location, click.tapCount);
    postButton(click.button, false, location, click.tapCount);
}

void InputInjectionManager::setButton(const DecodedPacket::MouseButtonChange& change) {
    const bool isDown = change.state == KeyState::pressed;
    bool& held = change.button == MouseButton::left ? leftButtonDown_ : rightButtonDown_;
    if (held == isDown) return;
    held = isDown;
    postButton(change.button, isDown, poster_.pointerLocation(), 1);
}

void InputInjectionManager::scroll(const DecodedPacket::MouseScroll& scroll) {
    // A delta moves the content as a finger does, a wheel moves the view: the signs are opposite.
    const std::int32_t wheel2 = scrollX_.add(-static_cast<double>(scroll.deltaX) * scrollScale);
    const std::int32_t wheel1 = scrollY_.add(-static_cast<double>(scroll.deltaY) * scrollScale);
    if (wheel1 != 0 || wheel2 != 0) poster_.postScroll({wheel1, wheel2});
}

void InputInjectionManager::strokeKey(const DecodedPacket::KeyStroke& stroke) {
    const bool isDown = stroke.state == KeyState::pressed;
    postKey(stroke.keycode, eventFlags(stroke.modifiers), isDown);
    if (isDown && onTransportKey) onTransportKey(stroke.keycode, stroke.modifiers);
}

void InputInjectionManager::typeText(const DecodedPacket::Text& text) {
    if (!isShortcut(text.modifiers)) poster_.expectText(text.text);
    for (std::string_view rest = text.text; !rest.empty();) {
        const std::size_t length = firstCharacterLength(rest);
        if (length == 0) return;
        typeCharacter(rest.substr(0, length), text.modifiers, text.fallbackKeycode);
        rest.remove_prefix(length);
    }
}

void InputInjectionManager::typeCharacter(std::string_view character, ModifierFlags modifiers,
                                          std::optional<std::uint16_t> fallbackKeycode) {
    if (const auto keycode = fixedKeycode(character)) {
        tapKey(*keycode, eventFlags(modifiers));
        return;
    }
    const LayoutTable& table = layoutMapper_.table();
    auto mapping = table.find(character);
    if (!mapping && isShortcut(modifiers)) mapping = table.find(lowercased(character));
    if (mapping) {
        tapKey(mapping->keycode, eventFlags(mapping->modifiers | modifiers));
    } else if (isShortcut(modifiers) && fallbackKeycode) {
        tapKey(*fallbackKeycode, eventFlags(modifiers));
    } else {
        typeUnicode(character);
    }
}

void InputInjectionManager::typeUnicode(std::string_view text) {
    const std::u16string units = utf16(text);
    for (std::u16string_view rest = units; !rest.empty();) {
        const std::u16string_view chunk = rest.substr(0, EventPoster::maximumUnicodeUnits);
        poster_.postUnicode(chunk, true);
        poster_.postUnicode(chunk, false);
        rest.remove_prefix(chunk.size());
    }
}

void InputInjectionManager::postButton(MouseButton button, bool isDown, Point location,
                                       std::int64_t clickState) {
    using Type = MouseEvent::Type;
    MouseEvent event;
    if (button == MouseButton::left) {
        event.type = isDown ? Type::leftDown : Type::leftUp;
    } else {
        event.type = isDown ? Type::rightDown : Type::rightUp;
    }
    event.location = location;
    event.button = button;
    event.clickState = clickState;
    poster_.postMouse(event);
}

void InputInjectionManager::postKey(std::uint16_t keycode, EventFlags flags, bool isDown) {
    if (poster_.postKey({keycode, flags, isDown})) heldKeys_.set(keycode, isDown);
}

void InputInjectionManager::tapKey(std::uint16_t keycode, EventFlags flags) {
    postKey(keycode, flags, true);
    postKey(keycode, flags, false);
}

void InputInjectionManager::releaseAll() {
    poster_.dropWaiting();
    const Point location = poster_.pointerLocation();
    if (leftButtonDown_) {
        postButton(MouseButton::left, false, location, 1);
        leftButtonDown_ = false;
    }
    if (rightButtonDown_) {
        postButton(MouseButton::right, false, location, 1);
        rightButtonDown_ = false;
    }
    if (heldKeys_.any()) {
        for (std::size_t keycode = 0; keycode < heldKeys_.size(); ++keycode) {
            if (heldKeys_.test(keycode)) {
                poster_.postKey({static_cast<std::uint16_t>(keycode), EventFlags{}, false});
            }
        }
        heldKeys_.reset();
    }
    scrollX_.reset();
    scrollY_.reset();
}

bool InputInjectionManager::isButtonDown(MouseButton button) const {
    return button == MouseButton::left ? leftButtonDown_ : rightButtonDown_;
}

}  // namespace orbinex
