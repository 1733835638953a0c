#include "input/x11/x11_event_poster.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include "base/text.h"

namespace orbinex {

namespace {

// Core button numbers.
constexpr unsigned leftButton = 1;
constexpr unsigned rightButton = 3;
constexpr unsigned wheelUp = 4;
constexpr unsigned wheelDown = 5;
constexpr unsigned wheelLeft = 6;
constexpr unsigned wheelRight = 7;

bool isMotion(const MouseEvent& event) {
    using Type = MouseEvent::Type;
    return event.type == Type::moved || event.type == Type::leftDragged || event.type == Type::rightDragged;
}

bool isRelease(const MouseEvent& event) {
    return event.type == MouseEvent::Type::leftUp || event.type == MouseEvent::Type::rightUp;
}

bool isRelease(const std::variant<KeyEvent, char32_t>& operation) {
    const auto* key = std::get_if<KeyEvent>(&operation);
    return key && !key->isDown;
}

/// Calls `use` with every whole character of the units. `high` is the first half of a character that earlier
/// units ended with, and afterwards that of these.
template <class Use>
void forEachScalar(std::u16string_view units, char16_t& high, Use use) {
    for (const char16_t unit : units) {
        if (unit >= 0xD800 && unit < 0xDC00) {
            high = unit;
            continue;
        }
        const char16_t first = std::exchange(high, u'\0');
        char32_t scalar = unit;
        if (unit >= 0xDC00 && unit < 0xE000) {
            if (first == 0) continue;
            scalar = 0x10000U + ((static_cast<char32_t>(first) - 0xD800U) << 10U) + (scalar - 0xDC00U);
        }
        use(scalar);
    }
}

}  // namespace

X11EventPoster::X11EventPoster(X11Connection& connection, MainQueue& queue)
    : X11EventPoster(connection, queue, Options{}) {}

X11EventPoster::X11EventPoster(X11Connection& connection, MainQueue& queue, Options options)
    : connection_(connection),
      queue_(queue),
      ledger_(connection),
      displays_(connection),
      pointer_(connection, displays_, queue),
      keyboard_(connection, ledger_, options.commandKey),
      scrollSink_(options.scrollSink) {
    if (scrollSink_) scrollDevice_.emplace(connection, std::string(scrollSink_->deviceName()));
}

X11EventPoster::~X11EventPoster() {
    releaseEverything();
}

void X11EventPoster::expectText(std::string_view text) {
    // What waits has its own use for the spare keys.
    if (!waiting_.empty() || !canPost()) return;
    std::u32string scalars;
    char16_t high = 0;
    forEachScalar(utf16(text), high, [&](char32_t scalar) { scalars += scalar; });
    // A single character is made ready before its own press.
    if (scalars.size() < 2) return;
    noteKeyboardUse();
    keyboard_.expect(scalars, queue_.uptime());
}

bool X11EventPoster::send() {
    const bool isSent = connection_.flush();
    connection_.processEvents();
    return isSent;
}

bool X11EventPoster::postMouse(const MouseEvent& event) {
    if (!canPost()) return false;
    const bool isDone = perform(event);
    return send() && isDone;
}

bool X11EventPoster::postScroll(const ScrollEvent& event) {
    if (!canPost()) return false;
    if (scrollDevice_ && scrollDevice_->isInUse() && scrollSink_->scroll(event)) return true;
    wheel(vertical_.add(event.wheel1), wheelUp, wheelDown);
    wheel(horizontal_.add(event.wheel2), wheelLeft, wheelRight);
    return send();
}

bool X11EventPoster::postKey(const KeyEvent& event) {
    return post(event);
}

bool X11EventPoster::postUnicode(std::u16string_view units, bool isDown) {
    if (!isDown) return canPost();
    bool isPosted = true;
    forEachScalar(units, highSurrogate_, [&](char32_t scalar) { isPosted = post(scalar) && isPosted; });
    return isPosted;
}

bool X11EventPoster::post(const Operation& operation) {
    if (!canPost()) return false;
    if (!waiting_.empty()) return enqueue(operation);
    const Outcome outcome = std::visit([this](const auto& event) { return perform(event); }, operation);
    if (outcome == Outcome::later) return enqueue(operation);
    return send() && outcome == Outcome::done;
}

bool X11EventPoster::enqueue(const Operation& operation) {
    if (waiting_.size() >= maximumWaiting && !isRelease(operation)) return false;
    waiting_.push_back(operation);
    if (!retry_.isActive()) continueWaiting();
    return true;
}

void X11EventPoster::continueWaiting() {
    while (!waiting_.empty()) {
        const Operation operation = waiting_.front();
        if (std::visit([this](const auto& event) { return perform(event); }, operation) == Outcome::later)
            break;
        waiting_.pop_front();
    }
    send();
    if (waiting_.empty()) return;
    const auto delay = keyboard_.nextFree().value_or(queue_.uptime()) - queue_.uptime();
    retry_ = queue_.after(std::max<MainQueue::Delay>(delay, std::chrono::milliseconds(1)),
                          [this] { continueWaiting(); });
}

bool X11EventPoster::perform(const MouseEvent& event) {
    if (isMotion(event)) return pointer_.moveTo(event.location);
    const unsigned button = event.button == MouseButton::left ? leftButton : rightButton;
    if (isRelease(event)) {
        releaseButton(button);
        return true;
    }
    const int missing =
        clickRun_.missingClicks(event.button, event.clickState, event.location, queue_.uptime());
    click(button, missing);
    pointer_.notePress();
    return pressButton(button);
}

bool X11EventPoster::pressButton(unsigned button) {
    if (!ledger_.hold({HeldItem::Kind::button, static_cast<std::uint8_t>(button), 0})) return false;
    XTestFakeButtonEvent(connection_.display(), button, True, CurrentTime);
    return true;
}

void X11EventPoster::releaseButton(unsigned button) {
    XTestFakeButtonEvent(connection_.display(), button, False, CurrentTime);
    ledger_.letGo(HeldItem::Kind::button, static_cast<std::uint8_t>(button));
    ledger_.settle();
}

void X11EventPoster::click(unsigned button, int times) {
    if (times == 0 || !pressButton(button)) return;
    for (int i = 1; i < times; ++i) {
        XTestFakeButtonEvent(connection_.display(), button, False, CurrentTime);
        XTestFakeButtonEvent(connection_.display(), button, True, CurrentTime);
    }
    releaseButton(button);
}

void X11EventPoster::wheel(int clicks, unsigned positiveButton, unsigned negativeButton) {
    click(clicks > 0 ? positiveButton : negativeButton, std::abs(clicks));
}

X11EventPoster::Outcome X11EventPoster::perform(const KeyEvent& event) {
    noteKeyboardUse();
    const bool isDone =
        event.isDown ? keyboard_.press(event.keycode, event.flags) : keyboard_.release(event.keycode);
    return isDone ? Outcome::done : Outcome::failed;
}

X11EventPoster::Outcome X11EventPoster::perform(char32_t scalar) {
    noteKeyboardUse();
    switch (keyboard_.type(scalar, queue_.uptime())) {
        case X11Keyboard::Typed::done: return Outcome::done;
        case X11Keyboard::Typed::later: return Outcome::later;
        case X11Keyboard::Typed::impossible: break;
    }
    return Outcome::failed;
}

void X11EventPoster::noteKeyboardUse() {
    lastKeyboardUse_ = queue_.uptime();
    if (!rest_.isActive()) rest_ = queue_.after(restTime, [this] { restIfUnused(); });
}

void X11EventPoster::restIfUnused() {
    const auto unused = queue_.uptime() - lastKeyboardUse_;
    if (unused < restTime) {
        rest_ = queue_.after(restTime - unused, [this] { restIfUnused(); });
        return;
    }
    keyboard_.endLoans();
    ledger_.settle();
    connection_.flush();
}

void X11EventPoster::dropWaiting() {
    retry_.cancel();
    for (const Operation& operation : std::exchange(waiting_, {})) {
        if (isRelease(operation)) perform(std::get<KeyEvent>(operation));
    }
    highSurrogate_ = 0;
    vertical_.reset();
    horizontal_.reset();
    if (scrollSink_) scrollSink_->dropRemainder();
}

void X11EventPoster::releaseEverything() {
    dropWaiting();
    rest_.cancel();
    keyboard_.releaseAll();
    for (const HeldItem& item : ledger_.items()) {
        if (item.kind == HeldItem::Kind::button) releaseButton(item.code);
    }
    ledger_.settle();
    connection_.flush();
}

}  // namespace orbinex
