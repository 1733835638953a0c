// What fingers mean.

#include "demo/phone/trackpad.h"

#include <gtest/gtest.h>

namespace orbinex::demo {
namespace {

using namespace std::chrono_literals;
using Packets = Trackpad::Packets;

DecodedPacket click(std::uint8_t count, MouseButton button = MouseButton::left) {
    return {DecodedPacket::MouseClick{button, count}};
}

TEST(Trackpad, countsTapsOfOneRunUpToThree) {
    Trackpad pad;
    const auto tap = [&](Trackpad::Time at) {
        pad.touch({10, 10}, at, MouseButton::left);
        return pad.lift(at + 80ms);
    };
    EXPECT_EQ(tap(0ms), Packets{click(1)});
    EXPECT_EQ(tap(200ms), Packets{click(2)});
    EXPECT_EQ(tap(400ms), Packets{click(3)});
    EXPECT_EQ(tap(600ms), Packets{click(1)}) << "a fourth begins a new run";
    EXPECT_EQ(tap(600ms + 80ms + Trackpad::runLimit), Packets{click(1)}) << "too late";
}

TEST(Trackpad, tapsWithTheRightButton) {
    Trackpad pad;
    pad.touch({0, 0}, 0ms, MouseButton::right);
    EXPECT_EQ(pad.lift(50ms), Packets{click(1, MouseButton::right)});
}

TEST(Trackpad, pointsByAllThatTheFingerHasMovedAndTapsNotThen) {
    Trackpad pad;
    pad.touch({10, 10}, 0ms, MouseButton::left);
    EXPECT_TRUE(pad.move({11, 11}).empty()) << "a finger is never quite still";
    EXPECT_EQ(pad.move({16, 8}), (Packets{{DecodedPacket::MouseMove{6, -2}}}));
    EXPECT_EQ(pad.move({17, 8}), (Packets{{DecodedPacket::MouseMove{1, 0}}}));
    EXPECT_TRUE(pad.hold().empty());
    EXPECT_TRUE(pad.lift(100ms).empty());
    EXPECT_TRUE(pad.move({50, 50}).empty()) << "no finger is there";
}

TEST(Trackpad, dragsWhatAFingerThatHasRestedPicksUp) {
    const DecodedPacket press{DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}};
    const DecodedPacket release{DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::released}};
    for (const bool isCancelled : {false, true}) {
        Trackpad pad;
        pad.touch({0, 0}, 0ms, MouseButton::left);
        EXPECT_EQ(pad.hold(), Packets{press});
        EXPECT_TRUE(pad.hold().empty()) << "once";
        EXPECT_EQ(pad.move({30, 0}), (Packets{{DecodedPacket::MouseMove{30, 0}}}));
        EXPECT_EQ(isCancelled ? pad.cancel() : pad.lift(2s), Packets{release});
        EXPECT_TRUE(pad.lift(2s).empty());
    }
}

TEST(Trackpad, takesALongTouchForNothing) {
    Trackpad pad;
    pad.touch({0, 0}, 0ms, MouseButton::left);
    EXPECT_TRUE(pad.lift(Trackpad::longestTap + 1ms).empty());
}

TEST(Trackpad, scrollsDownForAWheelThatTurnsTowardsThePerson) {
    EXPECT_EQ(Trackpad::scroll(0, -240), (Packets{{DecodedPacket::MouseScroll{0, 10}}}));
    EXPECT_TRUE(Trackpad::scroll(0, 0).empty());
}

}  // namespace
}  // namespace orbinex::demo
