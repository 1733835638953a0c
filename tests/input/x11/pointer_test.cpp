#include <algorithm>

#include <gtest/gtest.h>

#include "input/x11/x11_test.h"
#include "support/allocation_counter.h"

namespace orbinex::test {
namespace {

using Type = XClient::Event::Type;

constexpr unsigned leftButtonState = 1U << 8U;

class X11PointerTest : public X11Test {
  protected:
    void TearDown() override {
        X11Test::TearDown();
        ASSERT_TRUE(
            server->run("xrandr --delmonitor L 2>/dev/null; xrandr --delmonitor R 2>/dev/null; true"));
    }
    static void move(X11Input& input, float dx, float dy) {
        input.manager.handle({DecodedPacket::MouseMove{dx, dy}});
    }
    static void click(X11Input& input, MouseButton button, std::uint8_t count) {
        input.manager.handle({DecodedPacket::MouseClick{button, count}});
    }
    /// Where the server says that the pointer is, in whole pixels.
    std::pair<int, int> pointer() const { return client->pointer(); }
    /// The buttons pressed since the last call.
    std::vector<unsigned> presses(X11Input& input) {
        input.sync();
        std::vector<unsigned> buttons;
        for (const auto& event : client->takeEvents()) {
            if (event.type == Type::buttonPress) buttons.push_back(event.detail);
        }
        return buttons;
    }
};

TEST_F(X11PointerTest, movesAddUpToTheLastFraction) {
    X11Input input(server->display());
    const auto [x, y] = pointer();
    for (int i = 0; i < 100; ++i) move(input, 0.3125F, -0.25F);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(x + 31, y - 25));
    EXPECT_EQ(input.poster.pointerLocation(), (Point{x + 31.25, y - 25.0}));
    for (int i = 0; i < 100; ++i) move(input, -0.3125F, 0.25F);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(x, y));
}

TEST_F(X11PointerTest, movesAfterAPressThatAWindowManagerHoldsBackAreNotLost) {
    X11Input input(server->display());
    const auto [x, y] = pointer();
    move(input, static_cast<float>(150 - x), 0);
    // As window managers do to raise the window that is clicked.
    client->holdPressesBack();
    const auto button = [&](KeyState state) {
        input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, state}});
    };
    button(KeyState::pressed);
    // The last one leads close to the edge, where the exact place counts.
    for (const float dx : {-15.0F, -15.0F, -15.0F, -60.0F}) {
        move(input, dx, 1);
        input.sync();
    }
    EXPECT_EQ(pointer(), std::pair(150, y)) << "the press is held back";
    client->letPressesGo();
    input.sync();
    EXPECT_EQ(pointer(), std::pair(45, y + 4));
    button(KeyState::released);
    move(input, 5, 0);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(50, y + 4));
}

TEST_F(X11PointerTest, otherPeoplesMovesBetweenOursCount) {
    X11Input input(server->display());
    const int x = pointer().first;
    const int y = pointer().second;
    int movedX = 0;
    int movedY = 0;
    const auto expectAt = [&](const char* what) {
        input.sync();
        EXPECT_EQ(pointer(), std::pair(x + movedX, y + movedY)) << what;
    };
    for (int i = 0; i < 5; ++i) {
        move(input, 3, 1);
        move(input, 2, -2);
        movedX += 5;
        movedY -= 1;
        expectAt("ours");
        client->movePointerBy(-20, 7);
        movedX -= 20;
        movedY += 7;
        move(input, 1, 1);
        movedX += 1;
        movedY += 1;
        expectAt("after another program's");
        client->warpPointerBy(11, -30);
        movedX += 11;
        movedY -= 30;
        move(input, -4, 2);
        movedX -= 4;
        movedY += 2;
        expectAt("after a warp");
        client->physicalMovePointerBy(-9, 14);
        movedX -= 9;
        movedY += 14;
        move(input, 2, 0);
        movedX += 2;
        expectAt("after a mouse");
        EXPECT_EQ(input.poster.pointerLocation(), (Point{double(x + movedX), double(y + movedY)}));
    }
}

TEST_F(X11PointerTest, movesStopAtTheEdgesAndComeBackAtOnce) {
    X11Input input(server->display());
    move(input, 1e30F, -1e30F);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(1279, 0));
    move(input, -1, 1);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(1278, 1));
    move(input, -40000, 40000);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(0, 899));
    move(input, 640, -449);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(640, 450));
}

TEST_F(X11PointerTest, anEdgeThatSomebodyElseBroughtNearHolds) {
    X11Input input(server->display());
    move(input, 1, 0);
    client->warpPointerBy(1270 - pointer().first, 0);
    move(input, 100, 0);
    input.sync();
    EXPECT_EQ(pointer().first, 1279);
    move(input, 100, 0);
    move(input, -1, 0);
    input.sync();
    EXPECT_EQ(pointer().first, 1278);
}

TEST_F(X11PointerTest, monitorsAreFollowedAsTheyComeAndGo) {
    X11Input input(server->display());
    EXPECT_EQ(input.poster.mainDisplay(), (Rect{0, 0, 1280, 900}));
    ASSERT_TRUE(server->run("xrandr --setmonitor L 640/170x900/240+0+0 screen >/dev/null"));
    ASSERT_TRUE(server->run("xrandr --setmonitor R 500/170x600/240+640+100 none"));
    input.settle();
    const auto displays = input.poster.activeDisplays();
    ASSERT_EQ(displays.size(), 2U);
    EXPECT_EQ(displays[0], (Rect{0, 0, 640, 900}));
    EXPECT_EQ(displays[1], (Rect{640, 100, 500, 600}));
    EXPECT_EQ(input.poster.mainDisplay(), displays[0]);

    move(input, 1e6F, 0);
    input.sync();
    EXPECT_EQ(pointer().first, 1139);
    move(input, 0, 690 - static_cast<float>(pointer().second));
    move(input, 0, 20);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(1139, 699));
    // Below the right monitor there is nothing; the left one is the nearer way out.
    move(input, -498, 100);
    input.sync();
    EXPECT_EQ(pointer(), std::pair(639, 799));

    ASSERT_TRUE(server->run("xrandr --delmonitor R; xrandr --delmonitor L"));
    input.settle();
    ASSERT_EQ(input.poster.activeDisplays().size(), 1U);
    move(input, 1e6F, 0);
    input.sync();
    EXPECT_EQ(pointer().first, 1279);
}

TEST_F(X11PointerTest, clientsCountTheClicksThatThePhoneCounted) {
    using enum MouseButton;
    struct Step {
        int millisecondsBefore;
        MouseButton button;
        std::uint8_t count;
        std::size_t presses;
        int seen;
    };
    // The client counts in real time, the presses in virtual time.
    const std::vector<std::vector<Step>> runs{
        {{0, left, 1, 1, 1}, {100, left, 2, 1, 2}, {100, left, 3, 1, 3}},
        {{0, left, 2, 2, 2}},
        {{0, right, 3, 3, 3}},
        {{0, left, 1, 1, 1}, {100, left, 3, 2, 3}},
        {{0, left, 1, 1, 1}, {100, right, 2, 2, 2}},
        {{0, left, 1, 1, 1}, {400, left, 2, 2, -1}},
    };
    X11Input input(server->display());
    for (const auto& run : runs) {
        move(input, 20, 0);
        presses(input);
        for (const Step& step : run) {
            input.queue.advance(std::chrono::milliseconds(step.millisecondsBefore));
            click(input, step.button, step.count);
            const auto buttons = presses(input);
            EXPECT_EQ(buttons.size(), step.presses) << int(step.count);
            EXPECT_TRUE(std::ranges::all_of(
                buttons, [&](unsigned b) { return b == (step.button == left ? 1U : 3U); }));
            if (step.seen > 0) {
                EXPECT_EQ(client->clickCount(), step.seen);
            }
        }
    }
    // A run that has ended does not lend its clicks to the next.
    move(input, 20, 0);
    click(input, left, 2);
    click(input, left, 1);
    presses(input);
    click(input, left, 2);
    EXPECT_EQ(presses(input).size(), 1U);
    move(input, 20, 0);
    presses(input);
    click(input, left, 3);
    EXPECT_EQ(presses(input).size(), 3U);
}

TEST_F(X11PointerTest, dragsAreMotionWithTheButtonHeld) {
    X11Input input(server->display());
    client->takeEvents();
    input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
    move(input, 5, 5);
    input.sync();
    EXPECT_EQ(client->buttonsDown(), leftButtonState);
    input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::released}});
    move(input, 5, 5);
    input.sync();
    std::vector<std::pair<Type, unsigned>> seen;
    for (const auto& event : client->takeEvents()) seen.emplace_back(event.type, event.state);
    EXPECT_EQ(seen, (std::vector<std::pair<Type, unsigned>>{{Type::buttonPress, 0},
                                                            {Type::motion, leftButtonState},
                                                            {Type::buttonRelease, leftButtonState},
                                                            {Type::motion, 0}}));
}

TEST_F(X11PointerTest, scrollsBecomeWheelClicksWithTheRestCarried) {
    X11Input input(server->display());
    presses(input);
    const auto scroll = [&](float dx, float dy) {
        input.manager.handle({DecodedPacket::MouseScroll{dx, dy}});
        return presses(input);
    };
    using Buttons = std::vector<unsigned>;
    EXPECT_EQ(scroll(0, 3), Buttons{});
    EXPECT_EQ(scroll(0, 3), Buttons{5});
    EXPECT_EQ(scroll(0, -11), Buttons({4, 4}));
    EXPECT_EQ(scroll(5, 0), Buttons{7});
    EXPECT_EQ(scroll(-5, 0), Buttons{6});
    EXPECT_EQ(scroll(-5, 5), Buttons({5, 6}));
    // However far, one event is no more than a strong flick.
    EXPECT_EQ(scroll(0, 1e30F), Buttons(10, 5));
    // The next iPhone begins anew.
    input.manager.releaseAll();
    scroll(4, 4);
    input.manager.releaseAll();
    EXPECT_EQ(scroll(4, 4), Buttons{});
}

TEST_F(X11PointerTest, movesClicksAndScrollsAllocateNothing) {
    X11Input input(server->display());
    const auto everything = [&] {
        move(input, 1, 1);
        click(input, MouseButton::left, 2);
        input.manager.handle({DecodedPacket::MouseScroll{5, -10}});
        input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
        move(input, -1, -1);
        input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::released}});
    };
    everything();
    EXPECT_EQ(allocationsDuring(everything), 0U);
}

}  // namespace
}  // namespace orbinex::test
