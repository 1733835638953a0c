#include "trackpad.h"

#include <cmath>
#include <utility>

namespace orbinex::demo {

namespace {

constexpr std::uint8_t mostTaps = 3;
/// A wheel click, in the phone's points, and in eighths of a degree.
constexpr double pointsOfClick = 5;
constexpr double angleOfClick = 120;

Trackpad::Packets one(DecodedPacket::Value value) {
    return {DecodedPacket{std::move(value)}};
}

}  // namespace

void Trackpad::touch(Place at, Time now, MouseButton button) {
    touch_ = Touch{.begin = at, .last = at, .since = now, .button = button};
}

Trackpad::Packets Trackpad::move(Place to) {
    if (!touch_) return {};
    if (!touch_->hasMoved && std::hypot(to.x - touch_->begin.x, to.y - touch_->begin.y) < stillness)
        return {};
    touch_->hasMoved = true;
    const auto from = touch_->last;
    touch_->last = to;
    return one(
        DecodedPacket::MouseMove{static_cast<float>(to.x - from.x), static_cast<float>(to.y - from.y)});
}

Trackpad::Packets Trackpad::hold() {
    if (!touch_ || touch_->hasMoved || touch_->isDrag) return {};
    touch_->isDrag = true;
    return one(DecodedPacket::MouseButtonChange{touch_->button, KeyState::pressed});
}

Trackpad::Packets Trackpad::lift(Time now) {
    if (!touch_) return {};
    if (touch_->isDrag || touch_->hasMoved || now - touch_->since > longestTap) return cancel();
    const auto button = touch_->button;
    touch_.reset();
    const bool isOfRun = lastTap_ && now - *lastTap_ <= runLimit && tapCount_ < mostTaps;
    tapCount_ = isOfRun ? static_cast<std::uint8_t>(tapCount_ + 1) : std::uint8_t{1};
    lastTap_ = now;
    return one(DecodedPacket::MouseClick{button, tapCount_});
}

Trackpad::Packets Trackpad::cancel() {
    const auto touch = std::exchange(touch_, std::nullopt);
    lastTap_.reset();
    if (!touch || !touch->isDrag) return {};
    return one(DecodedPacket::MouseButtonChange{touch->button, KeyState::released});
}

Trackpad::Packets Trackpad::scroll(double angleX, double angleY) {
    const auto points = [](double angle) {
        return static_cast<float>(-angle * pointsOfClick / angleOfClick);
    };
    if (angleX == 0 && angleY == 0) return {};
    return one(DecodedPacket::MouseScroll{points(angleX), points(angleY)});
}

}  // namespace orbinex::demo
