#include "input/x11/x11_pointer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xtest.h>

namespace orbinex {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using Answer = std::unique_ptr<xcb_query_pointer_reply_t, Free>;

constexpr std::uint8_t absoluteMotion = 0;
constexpr std::uint8_t relativeMotion = 1;

}  // namespace

X11Pointer::X11Pointer(X11Connection& connection, X11Displays& displays, MainQueue& queue)
    : connection_(connection), displays_(displays), queue_(queue), xcb_(connection.xcb()) {}

X11Pointer::~X11Pointer() {
    if (question_) xcb_discard_reply(xcb_, question_->sequence);
}

X11Pointer::Pixel X11Pointer::pixelOf(Point point) {
    // What the protocol can say; it would wrap.
    return {static_cast<int>(std::clamp(std::floor(point.x), -32768.0, 32767.0)),
            static_cast<int>(std::clamp(std::floor(point.y), -32768.0, 32767.0))};
}

bool X11Pointer::isFarFromEdges(Point point) {
    return std::ranges::any_of(displays_.active(), [&](const Rect& display) {
        return point.x >= display.x + edgeMargin && point.x < display.maxX() - edgeMargin &&
               point.y >= display.y + edgeMargin && point.y < display.maxY() - edgeMargin;
    });
}

Point X11Pointer::location() {
    readAnswer();
    isRemembered_ = lastMove_ && queue_.uptime() - *lastMove_ <= trustTime && isFarFromEdges(location_);
    return isRemembered_ ? location_ : askLocation();
}

Point X11Pointer::askLocation() {
    isRemembered_ = false;
    if (question_) xcb_discard_reply(xcb_, question_->sequence);
    question_.reset();
    const auto cookie = xcb_query_pointer(xcb_, static_cast<xcb_window_t>(connection_.root()));
    const Answer answer(xcb_query_pointer_reply(xcb_, cookie, nullptr));
    if (!answer) return location_ = {};
    take({answer->root_x, answer->root_y}, pixelOf(location_));
    return location_;
}

bool X11Pointer::moveTo(Point target) {
    const Pixel to = pixelOf(target);
    const Pixel from = pixelOf(location_);
    if (isRemembered_ && isFarFromEdges(target)) {
        if (to != from) send(true, {to.x - from.x, to.y - from.y});
    } else {
        send(false, to);
    }
    location_ = target;
    lastMove_ = queue_.uptime();
    // Near an edge the next location is asked for anyway.
    isRemembered_ = isFarFromEdges(target);
    if (isRemembered_) ask();
    return xcb_flush(xcb_) > 0;
}

void X11Pointer::send(bool isRelative, Pixel motion) {
    xcb_test_fake_input(xcb_, XCB_MOTION_NOTIFY, isRelative ? relativeMotion : absoluteMotion,
                        XCB_CURRENT_TIME, XCB_NONE, static_cast<std::int16_t>(motion.x),
                        static_cast<std::int16_t>(motion.y), 0);
}

void X11Pointer::ask() {
    if (question_) {
        ++question_->moves;
        return;
    }
    const auto cookie = xcb_query_pointer(xcb_, static_cast<xcb_window_t>(connection_.root()));
    question_ = Question{cookie.sequence, pixelOf(location_), 0};
}

void X11Pointer::readAnswer() {
    if (!question_) return;
    Answer answer;
    if (question_->moves < maximumUnconfirmed) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(xcb_, question_->sequence, &reply, &error) == 0) return;
        std::free(error);
        answer.reset(static_cast<xcb_query_pointer_reply_t*>(reply));
    } else {
        answer.reset(xcb_query_pointer_reply(xcb_, {question_->sequence}, nullptr));
    }
    const Pixel expected = question_->expected;
    question_.reset();
    if (answer) take({answer->root_x, answer->root_y}, expected);
}

void X11Pointer::notePress() {
    press_ = Press{pixelOf(location_), queue_.uptime()};
}

void X11Pointer::take(Pixel actual, Pixel expected) {
    if (actual == expected) return;
    if (press_ && actual == press_->place && queue_.uptime() - press_->time <= holdTime) return;
    // Somebody else has moved it; what we have sent since is added to that.
    const Pixel known = pixelOf(location_);
    location_ = {static_cast<double>(known.x + actual.x - expected.x),
                 static_cast<double>(known.y + actual.y - expected.y)};
}

}  // namespace orbinex
