// What the program asks of the allocator between a notification and the event it becomes. The program has
// this counting operator new to itself.

#include <vector>

#include <gtest/gtest.h>

#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "protocol/gatt.h"
#include "sim/scripted_layout.h"
#include "sim/virtual_main_queue.h"
#include "support/allocation_counter.h"
#include "support/connected_program.h"
#include "support/private_x_server.h"

namespace orbinex::test {
namespace {

/// A desktop that counts what reaches it.
class CountingPoster final : public EventPoster {
  public:
    int posted = 0;

    [[nodiscard]] Point pointerLocation() override { return {100, 100}; }
    [[nodiscard]] std::span<const Rect> activeDisplays() override { return {&display_, 1}; }
    [[nodiscard]] Rect mainDisplay() override { return display_; }
    bool postMouse(const MouseEvent&) override { return ++posted > 0; }
    bool postScroll(const ScrollEvent&) override { return ++posted > 0; }
    bool postKey(const KeyEvent&) override { return ++posted > 0; }
    bool postUnicode(std::u16string_view, bool) override { return ++posted > 0; }
    void dropWaiting() override {}

  private:
    Rect display_{0, 0, 1280, 900};
};

struct Input {
    const char* name;
    UUID characteristic;
    /// Leaves nothing held.
    std::vector<Bytes> values;
    int events;
};

std::vector<Input> inputs() {
    using P = DecodedPacket;
    const auto& mouse = OrbinexProtocol::mouseCharacteristicUUID;
    const auto& keyboard = OrbinexProtocol::keyboardCharacteristicUUID;
    const auto button = [](MouseButton which, KeyState state) {
        return P{P::MouseButtonChange{which, state}}.encode();
    };
    const auto key = [](KeyState state) {
        return P{P::KeyStroke{0, ModifierFlags::shift | ModifierFlags::option, state}}.encode();
    };
    return {
        {"move", mouse, {P{P::MouseMove{2.5F, -1.25F}}.encode(), P{P::MouseMove{-2.5F, 1.25F}}.encode()}, 2},
        {"click", mouse, {P{P::MouseClick{MouseButton::right, 3}}.encode()}, 2},
        {"scroll", mouse, {P{P::MouseScroll{30, -90}}.encode()}, 1},
        {"button",
         mouse,
         {button(MouseButton::left, KeyState::pressed), P{P::MouseMove{1, 1}}.encode(),
          button(MouseButton::left, KeyState::released)},
         3},
        {"key", keyboard, {key(KeyState::pressed), key(KeyState::released)}, 2},
        {"text of the layout", keyboard, {P{P::Text{"aB", {}, std::nullopt}}.encode()}, 4},
        {"junk", mouse, {Bytes{0x01, 0x00}, Bytes{}, Bytes{0xFF, 1, 2, 3}}, 0},
    };
}

constexpr int repetitions = 100;

/// Nothing is allocated once the input has been through for a while: what grows while that happens is kept
/// for the next time.
void expectNoAllocations(ConnectedProgram& program, const Input& input) {
    const auto play = [&] {
        for (int i = 0; i < repetitions; ++i) {
            for (const Bytes& value : input.values) program.central.notify(input.characteristic, value);
        }
    };
    play();
    EXPECT_EQ(allocationsDuring(play), 0U) << input.name;
}

TEST(InputPath, allocatesNothingFromNotificationToEvent) {
    VirtualMainQueue queue;
    CountingPoster poster;
    ScriptedLayoutSource layouts;
    ConnectedProgram program(queue, poster, layouts);
    ASSERT_TRUE(program.connect([&] { queue.runDue(); }));
    for (const Input& input : inputs()) {
        poster.posted = 0;
        expectNoAllocations(program, input);
        EXPECT_EQ(poster.posted, 2 * repetitions * input.events) << input.name;
    }
}

TEST(InputPath, allocatesNothingOnTheWayToTheXServer) {
    const PrivateXServer server;
    VirtualMainQueue queue;
    const auto connection = X11Connection::open(server.display());
    ASSERT_TRUE(connection);
    X11EventPoster poster(*connection, queue);
    X11KeyboardLayoutSource layouts(*connection, queue);
    ConnectedProgram program(queue, poster, layouts);
    ASSERT_TRUE(program.connect([&] { queue.runDue(); }));
    const auto pointer = [&] {
        // As the server knows it, not as the poster does.
        const auto other = X11Connection::open(server.display());
        return other ? X11EventPoster(*other, queue).pointerLocation() : Point{};
    };
    const Point before = pointer();
    // The queue's time stands still, as timers may allocate: the poster sets one about three times a second
    // while keys are in use.
    for (const Input& input : inputs()) expectNoAllocations(program, input);
    // The drags have led there, and what followed them has waited for the server.
    EXPECT_EQ(pointer(), (Point{before.x + 2 * repetitions, before.y + 2 * repetitions}));
}

}  // namespace
}  // namespace orbinex::test
