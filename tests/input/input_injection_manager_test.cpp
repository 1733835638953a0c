#include "input/input_injection_manager.h"

#include <limits>

#include <gtest/gtest.h>

#include "sim/recording_event_poster.h"
#include "sim/scripted_layout.h"

namespace orbinex {
namespace {

using Type = MouseEvent::Type;
using Event = RecordingEventPoster::Event;
using Events = std::vector<Event>;
using Unicode = RecordingEventPoster::UnicodeEvent;

constexpr ModifierFlags none{};
constexpr EventFlags noFlags{};

class InputInjectionManagerTest : public testing::Test {
  protected:
    RecordingEventPoster poster;
    ScriptedLayoutSource layouts;
    InputInjectionManager manager{poster, layouts};

    void move(float x, float y) { manager.handle({DecodedPacket::MouseMove{x, y}}); }
    void scroll(float x, float y) { manager.handle({DecodedPacket::MouseScroll{x, y}}); }
    void click(MouseButton button, std::uint8_t count) {
        manager.handle({DecodedPacket::MouseClick{button, count}});
    }
    void button(MouseButton button, KeyState state) {
        manager.handle({DecodedPacket::MouseButtonChange{button, state}});
    }
    void key(std::uint16_t keycode, ModifierFlags modifiers, KeyState state) {
        manager.handle({DecodedPacket::KeyStroke{keycode, modifiers, state}});
    }
    void type(std::string text, ModifierFlags modifiers = none,
              std::optional<std::uint16_t> fallback = std::nullopt) {
        manager.handle({DecodedPacket::Text{std::move(text), modifiers, fallback}});
    }
    /// What was posted since the last call.
    Events posted() { return std::exchange(poster.events, {}); }
};

Events stroke(std::uint16_t keycode, EventFlags flags) {
    return {KeyEvent{keycode, flags, true}, KeyEvent{keycode, flags, false}};
}

TEST_F(InputInjectionManagerTest, movesArePlainWithoutButtonsAndDragsWithThem) {
    const auto typeOfMove = [this] {
        move(1, 1);
        const auto event = std::get<MouseEvent>(posted().back());
        return std::pair(event.type, event.button);
    };
    EXPECT_EQ(typeOfMove(), std::pair(Type::moved, MouseButton::left));
    button(MouseButton::right, KeyState::pressed);
    EXPECT_EQ(typeOfMove(), std::pair(Type::rightDragged, MouseButton::right));
    button(MouseButton::left, KeyState::pressed);
    EXPECT_EQ(typeOfMove(), std::pair(Type::leftDragged, MouseButton::left));
    button(MouseButton::right, KeyState::released);
    EXPECT_EQ(typeOfMove(), std::pair(Type::leftDragged, MouseButton::left));
}

TEST_F(InputInjectionManagerTest, movesAddFractionsAndCarryTheReceivedDeltaRounded) {
    move(0.25F, -2.5F);
    EXPECT_EQ(posted(), (Events{MouseEvent{Type::moved, {100.25, 97.5}, MouseButton::left, 0, 0, -3}}));
    move(-0.5F, 0.5F);
    EXPECT_EQ(posted(), (Events{MouseEvent{Type::moved, {99.75, 98}, MouseButton::left, 0, -1, 1}}));
}

TEST_F(InputInjectionManagerTest, movesBeyondEveryNumberStayOnTheDisplayAndSaturateTheDelta) {
    const float huge = std::numeric_limits<float>::max();
    move(huge, -huge);
    EXPECT_EQ(posted(),
              (Events{MouseEvent{Type::moved, {1279, 0}, MouseButton::left, 0, INT64_MAX, INT64_MIN}}));
}

TEST_F(InputInjectionManagerTest, clicksAreOnePairWithTheTapCountAndLeaveTheDragAlone) {
    button(MouseButton::left, KeyState::pressed);
    posted();
    click(MouseButton::left, 3);
    click(MouseButton::right, 1);
    const Point at{100, 100};
    EXPECT_EQ(posted(), (Events{MouseEvent{Type::leftDown, at, MouseButton::left, 3},
                                MouseEvent{Type::leftUp, at, MouseButton::left, 3},
                                MouseEvent{Type::rightDown, at, MouseButton::right, 1},
                                MouseEvent{Type::rightUp, at, MouseButton::right, 1}}));
    EXPECT_TRUE(manager.isButtonDown(MouseButton::left));
}

TEST_F(InputInjectionManagerTest, repeatedButtonTransitionsAreIgnored) {
    for (const MouseButton which : {MouseButton::left, MouseButton::right}) {
        button(which, KeyState::released);
        EXPECT_TRUE(posted().empty());
        button(which, KeyState::pressed);
        button(which, KeyState::pressed);
        EXPECT_EQ(posted().size(), 1U);
        button(which, KeyState::released);
        button(which, KeyState::released);
        EXPECT_EQ(posted().size(), 1U);
    }
}

TEST_F(InputInjectionManagerTest, scrollsInvertTheSignAndCarryTheFraction) {
    scroll(0.05F, 0);
    EXPECT_TRUE(posted().empty());
    scroll(0.0625F, 0);
    EXPECT_EQ(posted(), (Events{ScrollEvent{0, -1}}));
    EXPECT_NEAR(manager.scrollRemainderX(), -0.125, 1e-6);
    scroll(0, 0.34F);
    EXPECT_EQ(posted(), (Events{ScrollEvent{-3, 0}}));
    EXPECT_NEAR(manager.scrollRemainderY(), -0.4, 1e-6);
    scroll(-10, -0.06F);
    EXPECT_EQ(posted(), (Events{ScrollEvent{0, 99}}));
    scroll(3e38F, -3e38F);
    EXPECT_EQ(posted(), (Events{ScrollEvent{INT32_MAX, INT32_MIN}}));
}

TEST_F(InputInjectionManagerTest, pressedKeyStrokesAreReportedWithTheirRawModifiers) {
    std::vector<std::pair<std::uint16_t, std::uint8_t>> reported;
    manager.onTransportKey = [&](std::uint16_t keycode, ModifierFlags modifiers) {
        reported.emplace_back(keycode, modifiers.rawValue);
    };
    key(49, ModifierFlags{0xF6}, KeyState::pressed);
    EXPECT_TRUE(manager.isKeyHeld(49));
    key(49, none, KeyState::released);
    EXPECT_FALSE(manager.holdsAnyKey());
    type("a");
    EXPECT_EQ(reported, (std::vector<std::pair<std::uint16_t, std::uint8_t>>{{49, 0xF6}}));
    EXPECT_EQ(std::get<KeyEvent>(posted().front()),
              (KeyEvent{49, EventFlags::control | EventFlags::option, true}));
}

TEST_F(InputInjectionManagerTest, keysThatCannotBePressedAreNotHeldButStillReported) {
    int reports = 0;
    manager.onTransportKey = [&](std::uint16_t, ModifierFlags) { ++reports; };
    poster.failsToCreateEvents = true;
    key(49, none, KeyState::pressed);
    EXPECT_FALSE(manager.holdsAnyKey());
    EXPECT_EQ(reports, 1);
}

TEST_F(InputInjectionManagerTest, textGoesToKeysWhereTheLayoutHasThemAndIsTypedWhole) {
    const EventFlags control = EventFlags::control;
    const EventFlags command = EventFlags::command;
    const EventFlags shift = EventFlags::shift;
    const auto typed = [](const std::u16string& text) {
        return Events{Unicode{text, true}, Unicode{text, false}};
    };
    struct Case {
        std::string text;
        ModifierFlags modifiers;
        std::optional<std::uint16_t> fallback;
        Events expected;
    };
    const std::vector<Case> cases{
        {"a", none, {}, stroke(0, noFlags)},
        {"A", none, {}, stroke(0, shift)},
        {"a", ModifierFlags::command, {}, stroke(0, command)},
        {"A", ModifierFlags::command, {}, stroke(0, command | shift)},
        {"\xC3\xA5", none, {}, stroke(0, EventFlags::option)},
        // The same letter, decomposed.
        {"a\xCC\x8A", none, {}, stroke(0, EventFlags::option)},
        {"\n", ModifierFlags::shift, {}, stroke(36, shift)},
        {"\r", none, {}, stroke(36, noFlags)},
        {"\t", none, {}, stroke(48, noFlags)},
        {"é", none, 8, typed(u"é")},
        {"é", ModifierFlags::shift | ModifierFlags::option, 8, typed(u"é")},
        {"É", ModifierFlags::control, 8, stroke(8, control)},
        {"é", ModifierFlags::control, {}, typed(u"é")},
        // No entry for the capital, but one for the small letter: that key with its own modifiers.
        {"Å", ModifierFlags::command, 8, stroke(0, EventFlags::option | command)},
        // A family of four is one character of eleven units.
        {"👨‍👩‍👧‍👦", none, {}, typed(u"👨‍👩‍👧‍👦")},
    };
    for (const Case& c : cases) {
        type(c.text, c.modifiers, c.fallback);
        EXPECT_EQ(posted(), c.expected) << c.text << " " << int(c.modifiers.rawValue);
        EXPECT_FALSE(manager.holdsAnyKey());
    }

    type("a\r\nb");
    Events expected = stroke(0, noFlags);
    for (const auto keycode : {36, 11}) {
        for (const Event& event : stroke(static_cast<std::uint16_t>(keycode), noFlags))
            expected.push_back(event);
    }
    EXPECT_EQ(posted(), expected);
}

TEST_F(InputInjectionManagerTest, longCharactersAreCutIntoChunksOfTwentyUnits) {
    std::string stacked = "e";
    for (int i = 0; i < 44; ++i) stacked += "\xCC\x81";
    type(stacked);
    std::vector<std::size_t> sizes;
    for (const Event& event : poster.events) sizes.push_back(std::get<Unicode>(event).units.size());
    EXPECT_EQ(sizes, (std::vector<std::size_t>{20, 20, 20, 20, 5, 5}));
    EXPECT_EQ(poster.typedUnicode().size(), 45U);
}

TEST_F(InputInjectionManagerTest, releaseAllLetsGoOfEverythingOnceWithoutFlags) {
    button(MouseButton::left, KeyState::pressed);
    button(MouseButton::right, KeyState::pressed);
    key(55, ModifierFlags::command, KeyState::pressed);
    key(0xFFFE, none, KeyState::pressed);
    scroll(0.05F, 0.05F);
    posted();
    manager.releaseAll();
    const Point at{100, 100};
    EXPECT_EQ(posted(), (Events{MouseEvent{Type::leftUp, at, MouseButton::left, 1},
                                MouseEvent{Type::rightUp, at, MouseButton::right, 1},
                                KeyEvent{55, noFlags, false}, KeyEvent{0xFFFE, noFlags, false}}));
    EXPECT_EQ(manager.scrollRemainderX(), 0);
    EXPECT_EQ(manager.scrollRemainderY(), 0);
    manager.releaseAll();
    EXPECT_TRUE(posted().empty());
}

TEST_F(InputInjectionManagerTest, buttonsAreForgottenEvenWhenTheirEventsCannotBeCreated) {
    poster.failsToCreateEvents = true;
    button(MouseButton::left, KeyState::pressed);
    EXPECT_TRUE(manager.isButtonDown(MouseButton::left));
    manager.releaseAll();
    EXPECT_FALSE(manager.isButtonDown(MouseButton::left));
}

}  // namespace
}  // namespace orbinex
