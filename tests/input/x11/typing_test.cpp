#include <algorithm>

#include <gtest/gtest.h>

#include "input/x11/x11_test.h"
#include "support/comes_to_pass.h"

namespace orbinex::test {
namespace {

using Type = XClient::Event::Type;

constexpr ModifierFlags none{};

// Core keycodes of the evdev keyboard that the private server has.
constexpr unsigned shiftKey = 50;
constexpr unsigned altKey = 64;
constexpr unsigned controlKey = 37;
constexpr unsigned superKey = 133;
constexpr unsigned thirdLevelState = 128;
constexpr unsigned altState = 8;
constexpr unsigned controlState = 4;
constexpr unsigned superState = 64;
constexpr unsigned shiftState = 1;
constexpr unsigned capsLock = 2;

class X11TypingTest : public X11Test {};

/// Sixty ideographs.
std::string moreThanTheSpareKeysGive() {
    std::string text;
    for (char32_t scalar = 0x4E00; scalar < 0x4E00 + 60; ++scalar) {
        text += static_cast<char>(0xE0 | scalar >> 12);
        text += static_cast<char>(0x80 | (scalar >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (scalar & 0x3F));
    }
    return text;
}

/// The modifiers that the client saw with the first press that gave something else than a modifier.
const XClient::Event* firstPress(const std::vector<XClient::Event>& events, unsigned keycode) {
    const auto it = std::ranges::find_if(events, [&](const XClient::Event& event) {
        return event.type == Type::keyPress && event.detail == keycode;
    });
    return it == events.end() ? nullptr : &*it;
}

TEST_F(X11TypingTest, everyLayoutGivesTheTextThatWasSent) {
    struct Layout {
        std::string arguments;
        std::string name;
        std::string text;
    };
    const std::vector<Layout> layouts{
        {"us", "English (US)", "Hello, World! ~`@#$%^&*()_+{}|:\"<>? 0123456789"},
        {"de", "German", "Grüße, Übergröße! @€{[]}\\~|µ <>  ^´`"},
        {"fr", "French", "Voilà l'été, ça & là: 1234567890 @#{[|\\^]} €ùÙé"},
        {"ru", "Russian", "Съешь ещё этих мягких булок, да выпей чаю. №1 abc@"},
        {"us -variant dvorak", "English (Dvorak)", "Hello, dvorak: 'quoted' [text] {x}"},
        {"us -variant intl", "English (US, intl., with dead keys)", "naïve \"café\" `'^~ ñ €"},
    };
    for (const Layout& layout : layouts) {
        selectLayout(layout.arguments);
        X11Input input(server->display());
        EXPECT_EQ(input.manager.layoutMapper().layoutName(), layout.name);
        EXPECT_EQ(typed(input, layout.text), layout.text) << layout.arguments;
        EXPECT_EQ(client->keyboardMap(), keyboardMapBefore) << layout.arguments;
    }
}

TEST_F(X11TypingTest, layoutTablesNameTheKeysOfTheirLayout) {
    struct Case {
        std::string layout;
        std::string character;
        std::optional<KeyMapping> key;
    };
    const ModifierFlags shift = ModifierFlags::shift;
    const ModifierFlags option = ModifierFlags::option;
    const std::vector<Case> cases{
        {"us", "a", KeyMapping{0, none}},    {"us", "A", KeyMapping{0, shift}},
        {"us", "\\", KeyMapping{42, none}},  {"us", "é", std::nullopt},
        {"de", "y", KeyMapping{6, none}},    {"de", "z", KeyMapping{16, none}},
        {"de", "@", KeyMapping{12, option}}, {"de", "ß", KeyMapping{27, none}},
        {"de", "Ü", KeyMapping{33, shift}},  {"de", "<", KeyMapping{10, none}},
        {"de", "^", std::nullopt},           {"fr", "a", KeyMapping{12, none}},
        {"fr", "1", KeyMapping{18, shift}},  {"fr", "é", KeyMapping{19, none}},
        {"fr", "€", KeyMapping{14, option}}, {"ru", "ф", KeyMapping{0, none}},
        {"ru", "Ф", KeyMapping{0, shift}},   {"ru", "a", std::nullopt},
        {"ru", "ё", KeyMapping{50, none}},   {"us -variant dvorak", "e", KeyMapping{2, none}},
        {"jp", "|", KeyMapping{93, shift}},
    };
    for (const Case& c : cases) {
        selectLayout(c.layout);
        X11Input input(server->display());
        EXPECT_EQ(input.manager.layoutMapper().table().find(c.character), c.key)
            << c.layout << " " << c.character;
    }
}

TEST_F(X11TypingTest, textThatNoLayoutHasArrivesWholeAndInOrder) {
    X11Input input(server->display());
    const std::vector<std::string> texts{
        "привет, мир",
        "👨‍👩‍👧‍👦🇺🇳😀",
        "e\xCC\xA3\xCC\x82 ÿ ½",
        "中文字符測試日本語かな交じり文한국어漢字ไทย",
        // More different characters than there are spare keys, used again at once.
        "αβγδεζηθικλμνξοπρστυφχψωабвгдежзийклмнопрстуфхцчшщъыьэюяαβγδеж",
    };
    for (const std::string& text : texts) EXPECT_EQ(typed(input, text), text);
}

// A program that handles the first key of its life reads the keyboard map, and may not hear of changes while
// it does. So the keys of a text are ready before the first of them is pressed.
TEST_F(X11TypingTest, theKeyboardMapDoesNotChangeWithinAText) {
    X11Input input(server->display());
    // Xlib tells of changes once it has read the map.
    EXPECT_EQ(typed(input, "a"), "a");
    for (const std::string text : {"Grüße, 12 €!", "naïve Größen"}) {
        input.manager.handle({DecodedPacket::Text{text, none, std::nullopt}});
        input.sync();
        std::string seen;
        bool isMadeReady = false;
        for (const auto& event : client->takeEvents()) {
            if (event.type == Type::mapping) {
                isMadeReady = true;
                EXPECT_EQ(seen, "");
            }
            if (event.type == Type::keyPress) seen += event.text;
        }
        EXPECT_EQ(seen, text);
        EXPECT_TRUE(isMadeReady);
    }
    letTimePass(input);
}

TEST_F(X11TypingTest, keysThatFollowTextWaitForItAndThePointerDoesNot) {
    X11Input input(server->display());
    client->takeEvents();
    const std::string text = moreThanTheSpareKeysGive();
    input.manager.handle({DecodedPacket::Text{text, none, std::nullopt}});
    input.manager.handle({DecodedPacket::KeyStroke{0, none, KeyState::pressed}});
    input.manager.handle({DecodedPacket::KeyStroke{0, none, KeyState::released}});
    const auto [x, y] = client->pointer();
    input.manager.handle({DecodedPacket::MouseMove{20, 5}});
    input.manager.handle({DecodedPacket::MouseClick{MouseButton::left, 1}});
    input.manager.handle({DecodedPacket::MouseScroll{0, 5}});
    input.sync();
    EXPECT_EQ(client->pointer(), std::pair(x + 20, y + 5));
    std::string seen;
    std::vector<unsigned> buttons;
    const auto look = [&] {
        for (const auto& event : client->takeEvents()) {
            if (event.type == Type::keyPress) seen += event.text;
            if (event.type == Type::buttonPress) buttons.push_back(event.detail);
        }
    };
    look();
    EXPECT_EQ(buttons, (std::vector<unsigned>{1, 5}));
    EXPECT_LT(seen.size(), text.size());
    letTimePass(input);
    look();
    EXPECT_EQ(seen, text + "a");
}

TEST_F(X11TypingTest, nothingIsTypedAndNothingStaysDownOnceTheLinkIsLost) {
    X11Input input(server->display());
    const auto key = [&](std::uint16_t code, KeyState state) {
        input.manager.handle({DecodedPacket::KeyStroke{code, none, state}});
    };
    key(0, KeyState::pressed);
    key(1, KeyState::pressed);
    input.manager.handle({DecodedPacket::Text{moreThanTheSpareKeysGive(), none, std::nullopt}});
    input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
    key(0, KeyState::released);
    key(2, KeyState::pressed);
    input.sync();
    EXPECT_EQ(client->keysDown(), (std::vector<unsigned>{38, 39}));
    EXPECT_NE(client->buttonsDown(), 0U);
    input.manager.releaseAll();
    input.sync();
    EXPECT_TRUE(client->keysDown().empty());
    EXPECT_EQ(client->buttonsDown(), 0U);
    client->takeEvents();
    letTimePass(input);
    EXPECT_EQ(client->takeText(), "");
    EXPECT_EQ(typed(input, "ok ж"), "ok ж");
}

// The server repeats keys here after 20 ms, every 10 ms, by its own clock.
TEST_F(X11TypingTest, whatThePhoneHoldsIsNotRepeatedAndWhatAPersonHoldsIs) {
    ASSERT_TRUE(server->run("xset r rate 20 100"));
    X11Input input(server->display());
    const auto key = [&](KeyState state) {
        input.manager.handle({DecodedPacket::KeyStroke{51, none, state}});
        input.sync();
    };
    // How often any key is seen pressed until the server's clock has gone on for long enough to repeat it.
    const auto presses = [&] {
        std::ptrdiff_t count = 0;
        std::optional<unsigned long> first;
        EXPECT_TRUE(comesToPass(input.queue, [&] {
            client->physicalMovePointerBy(first ? 1 : -1, 0);
            const auto events = client->takeEvents();
            count += std::ranges::count(events, Type::keyPress, &XClient::Event::type);
            if (!first) first = events.back().time;
            return events.back().time > *first + 60;
        }));
        return count;
    };
    const auto personsPresses = [&] {
        client->physicalKey(38, true);
        const auto count = presses();
        client->physicalKey(38, false);
        return count;
    };
    // The server's keyboard takes over the settings of the device that is used, whenever that is another one.
    for (const char* before :
         {"true", "xset r off; xset r on", "setxkbmap de",
          "xinput create-master other; xinput reattach 'Xvfb keyboard' 'other keyboard'; "
          "xinput reattach 'Xvfb keyboard' 'Virtual core keyboard'; "
          "xinput remove-master 'other pointer'"}) {
        ASSERT_TRUE(server->run(before)) << before;
        for (const bool isPersonsTurn : {true, false}) {
            if (isPersonsTurn) {
                EXPECT_GT(personsPresses(), 2) << before;
            }
            client->takeEvents();
            key(KeyState::pressed);
            EXPECT_EQ(presses(), 1) << before << isPersonsTurn;
            key(KeyState::pressed);
            EXPECT_EQ(presses(), 1) << before << isPersonsTurn;
            EXPECT_EQ(client->keysDown(), std::vector<unsigned>{22});
            key(KeyState::released);
        }
    }
    // Where nothing is repeated, nothing is from then on either.
    ASSERT_TRUE(server->run("xset r off"));
    key(KeyState::pressed);
    key(KeyState::released);
    client->takeEvents();
    EXPECT_EQ(personsPresses(), 1);
    ASSERT_TRUE(server->run("xset r on"));
    selectLayout("us");
}

TEST_F(X11TypingTest, spareKeysAreGivenBackAfterARest) {
    X11Input input(server->display());
    input.manager.handle({DecodedPacket::Text{"ж", none, std::nullopt}});
    input.sync();
    EXPECT_NE(client->keyboardMap(), keyboardMapBefore);
    EXPECT_TRUE(client->hasRootProperty("_ORBINEX_HELD_0"));
    input.queue.advance(X11EventPoster::restTime);
    input.sync();
    EXPECT_EQ(client->keyboardMap(), keyboardMapBefore);
    EXPECT_FALSE(client->hasRootProperty("_ORBINEX_HELD_0"));
    EXPECT_EQ(input.queue.pendingTimers(), 0U);
}

TEST_F(X11TypingTest, borrowedKeysAreNotTakenForTheLayoutsOwn) {
    X11Input input(server->display());
    input.manager.handle({DecodedPacket::Text{"éж", none, std::nullopt}});
    input.sync();
    // Another program changes the map while the keys are lent, and it is read again.
    ASSERT_TRUE(server->run("xmodmap -e 'keycode 38 = a A'"));
    client->handleEvents();
    EXPECT_EQ(client->takeText(), "éж");
    EXPECT_EQ(typed(input, "aé"), "aé");
    EXPECT_EQ(typed(input, "éж"), "éж");
    selectLayout("us");
}

TEST_F(X11TypingTest, ownSpareKeysDoNotRebuildTheLayout) {
    X11Input input(server->display());
    int changes = 0;
    const auto subscription = input.layouts.onLayoutChange([&] { ++changes; });
    typed(input, "жщ");
    input.settle();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(input.queue.pendingTimers(), 0U);
}

TEST_F(X11TypingTest, aChangeOfLayoutOrGroupIsFollowed) {
    selectLayout("us,ru,de");
    X11Input input(server->display());
    EXPECT_EQ(typed(input, "Yж"), "Yж");
    client->lockGroup(1);
    input.settle();
    EXPECT_EQ(input.manager.layoutMapper().layoutName(), "Russian");
    EXPECT_EQ(input.manager.layoutMapper().table().find("ж"), (KeyMapping{41, none}));
    EXPECT_EQ(typed(input, "Yжé"), "Yжé");
    client->lockGroup(2);
    input.settle();
    EXPECT_EQ(typed(input, "Yж@"), "Yж@");
    EXPECT_EQ(input.layouts.asciiCapableLayout()->name, "English (US)");
    client->lockGroup(0);

    selectLayout("de");
    input.settle();
    EXPECT_EQ(input.manager.layoutMapper().layoutName(), "German");
    EXPECT_EQ(typed(input, "Yzж@"), "Yzж@");
}

TEST_F(X11TypingTest, modifiersThatAPersonHoldsDoNotChangeTextAndStayHeld) {
    selectLayout("de");
    X11Input input(server->display());
    const std::string text = "aA1@ж\té";
    for (const bool isPhysical : {false, true}) {
        for (const unsigned held : {shiftKey, controlKey, altKey, superKey}) {
            const auto hold = [&](bool isDown) {
                isPhysical ? client->physicalKey(held, isDown) : client->key(held, isDown);
            };
            hold(true);
            EXPECT_EQ(typed(input, text), text) << held << " " << isPhysical;
            EXPECT_EQ(client->keysDown(), std::vector<unsigned>{held}) << held << " " << isPhysical;
            hold(false);
            EXPECT_TRUE(client->keysDown().empty()) << held << " " << isPhysical;
        }
    }
    // And the modifiers work afterwards, for us and for the person.
    EXPECT_EQ(typed(input, "Ab"), "Ab");
    client->physicalKey(shiftKey, true);
    client->physicalKey(38, true);
    client->physicalKey(38, false);
    client->physicalKey(shiftKey, false);
    EXPECT_EQ(client->takeText(), "A");
}

TEST_F(X11TypingTest, capsLockAndLatchesDoNotChangeTextAndStay) {
    X11Input input(server->display());
    client->lockModifiers(capsLock, capsLock);
    EXPECT_EQ(typed(input, "aA1éжЖ"), "aA1éжЖ");
    EXPECT_EQ(client->modifierState(), capsLock << 16U);
    client->lockModifiers(capsLock, 0);

    client->latchModifiers(shiftState, shiftState);
    EXPECT_EQ(typed(input, "a"), "a");
    EXPECT_EQ(client->modifierState(), shiftState << 8U);
    client->latchModifiers(shiftState, 0);
}

TEST_F(X11TypingTest, shortcutsCarryTheirModifiersAndNoOthers) {
    struct Case {
        std::string layout;
        CommandKey command;
        std::uint16_t key;
        ModifierFlags modifiers;
        unsigned keycode;
        unsigned state;
    };
    const ModifierFlags command = ModifierFlags::command;
    const ModifierFlags option = ModifierFlags::option;
    const ModifierFlags shift = ModifierFlags::shift;
    const std::vector<Case> cases{
        {"us", CommandKey::control, 8, command, 54, controlState},
        {"us", CommandKey::super, 8, command, 54, superState},
        {"us", CommandKey::control, 8, ModifierFlags::control | command, 54, controlState},
        {"us", CommandKey::super, 8, ModifierFlags::control | command, 54, controlState | superState},
        {"us", CommandKey::control, 12, option, 24, altState},
        {"us", CommandKey::control, 123, option | shift, 113, altState | shiftState},
        {"de", CommandKey::control, 12, option, 24, thirdLevelState},
        {"de", CommandKey::control, 12, option | shift, 24, thirdLevelState | shiftState},
        {"de", CommandKey::control, 12, option | command, 24, altState | controlState},
        {"de", CommandKey::control, 123, option, 113, altState},
        {"us", CommandKey::control, 122, none, 67, 0},
    };
    for (const Case& c : cases) {
        selectLayout(c.layout);
        X11Input input(server->display(), {c.command, nullptr});
        client->takeEvents();
        input.manager.handle({DecodedPacket::KeyStroke{c.key, c.modifiers, KeyState::pressed}});
        input.manager.handle({DecodedPacket::KeyStroke{c.key, none, KeyState::released}});
        input.sync();
        const auto events = client->takeEvents();
        const auto* press = firstPress(events, c.keycode);
        ASSERT_NE(press, nullptr) << c.layout << c.key;
        EXPECT_EQ(press->state, c.state) << c.layout << " " << c.key << " " << int(c.modifiers.rawValue);
        EXPECT_TRUE(client->keysDown().empty());
    }
}

TEST_F(X11TypingTest, modifierKeysPressedAsKeysWorkWithTheKeysBetween) {
    X11Input input(server->display());
    const auto key = [&](std::uint16_t code, ModifierFlags modifiers, KeyState state) {
        input.manager.handle({DecodedPacket::KeyStroke{code, modifiers, state}});
        input.sync();
    };
    key(55, ModifierFlags::command, KeyState::pressed);
    EXPECT_EQ(client->keysDown(), std::vector<unsigned>{controlKey});
    key(8, ModifierFlags::command, KeyState::pressed);
    key(8, ModifierFlags::command, KeyState::released);
    EXPECT_EQ(client->keysDown(), std::vector<unsigned>{controlKey});
    // A key that says "no modifiers" gets none, and command is back afterwards.
    key(0, none, KeyState::pressed);
    key(0, none, KeyState::released);
    EXPECT_EQ(client->keysDown(), std::vector<unsigned>{controlKey});
    // Control is the same key here; it is up when both are.
    key(59, ModifierFlags::control, KeyState::pressed);
    key(55, none, KeyState::released);
    EXPECT_EQ(client->keysDown(), std::vector<unsigned>{controlKey});
    key(59, none, KeyState::released);
    EXPECT_TRUE(client->keysDown().empty());

    const auto events = client->takeEvents();
    EXPECT_EQ(firstPress(events, 54)->state, controlState);
    EXPECT_EQ(firstPress(events, 38)->state, 0U);
    EXPECT_EQ(firstPress(events, 38)->text, "a");
}

TEST_F(X11TypingTest, aHeldKeyKeepsItsModifiersUntilTheNextKey) {
    X11Input input(server->display());
    const auto key = [&](std::uint16_t code, ModifierFlags modifiers, KeyState state) {
        input.manager.handle({DecodedPacket::KeyStroke{code, modifiers, state}});
        input.sync();
    };
    key(6, ModifierFlags::command | ModifierFlags::shift, KeyState::pressed);
    EXPECT_EQ(client->keysDown(), (std::vector<unsigned>{controlKey, shiftKey, 52}));
    key(7, ModifierFlags::shift, KeyState::pressed);
    EXPECT_EQ(client->keysDown(), (std::vector<unsigned>{shiftKey, 52, 53}));
    key(6, none, KeyState::released);
    EXPECT_EQ(client->keysDown(), (std::vector<unsigned>{shiftKey, 53}));
    key(7, none, KeyState::released);
    EXPECT_TRUE(client->keysDown().empty());
}

TEST_F(X11TypingTest, theNumberPadGivesDigitsWhateverNumLockSays) {
    X11Input input(server->display());
    for (const std::uint16_t code : std::initializer_list<std::uint16_t>{82, 83, 87, 92, 65, 69}) {
        input.manager.handle({DecodedPacket::KeyStroke{code, none, KeyState::pressed}});
        input.manager.handle({DecodedPacket::KeyStroke{code, none, KeyState::released}});
    }
    input.sync();
    EXPECT_EQ(client->takeText(), "0159.+");
}

TEST_F(X11TypingTest, keysHeldAcrossAChangeOfTheKeyboardAreReleased) {
    X11Input input(server->display());
    const auto command = [&](KeyState state) {
        input.manager.handle({DecodedPacket::KeyStroke{55, none, state}});
        input.sync();
    };
    command(KeyState::pressed);
    const auto before = client->keysDown();
    selectLayout("us -option ctrl:swapcaps");
    input.settle();
    command(KeyState::pressed);
    EXPECT_EQ(client->keysDown().size(), 1U);
    EXPECT_NE(client->keysDown(), before);
    command(KeyState::released);
    EXPECT_TRUE(client->keysDown().empty());
}

TEST_F(X11TypingTest, theCapsLockKeyLocks) {
    X11Input input(server->display());
    const auto tap = [&] {
        input.manager.handle({DecodedPacket::KeyStroke{57, none, KeyState::pressed}});
        input.manager.handle({DecodedPacket::KeyStroke{57, none, KeyState::released}});
        input.sync();
    };
    tap();
    EXPECT_EQ(client->modifierState(), capsLock << 16U);
    tap();
    EXPECT_EQ(client->modifierState(), 0U);
}

TEST_F(X11TypingTest, keysThatDoNotExistAreRefused) {
    X11Input input(server->display());
    for (const std::uint16_t code : std::initializer_list<std::uint16_t>{63, 127, 128, 0xFFFF}) {
        EXPECT_FALSE(input.poster.postKey({code, {}, true})) << code;
        EXPECT_TRUE(input.poster.postKey({code, {}, false})) << code;
    }
}

TEST_F(X11TypingTest, halvesOfACharacterInTwoCallsBecomeOne) {
    X11Input input(server->display());
    client->takeEvents();
    for (const std::u16string_view part :
         {std::u16string_view(u"a\xD83D"), std::u16string_view(u"\xDE00z")}) {
        input.poster.postUnicode(part, true);
        input.poster.postUnicode(part, false);
    }
    // Halves without their other half are nothing.
    input.poster.postUnicode(u"\xDE00", true);
    input.poster.postUnicode(
        u"\xD83D"
        u"b",
        true);
    letTimePass(input);
    EXPECT_EQ(client->takeText(), "a😀zb");
}

}  // namespace
}  // namespace orbinex::test
