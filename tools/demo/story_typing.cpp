// The phone's keyboard: text of every kind, key strokes, and another layout of the desktop.

#include "desktop_settings.h"
#include "stage.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr auto caretLimit = 6s;

void type(Stage& stage, std::string_view text) {
    stage.user.type(text);
    stage.letter += text;
}

/// Strikes a key that moves the caret, and tells where it is then.
std::optional<Box> caretAfter(Stage& stage, std::uint16_t keycode, ModifierFlags modifiers = {}) {
    const auto before = stage.screen.find(caretColour);
    auto after = before;
    stage.user.strike(keycode, modifiers);
    const bool hasMoved = stage.loop.waitUntil(
        [&] {
            after = stage.screen.find(caretColour);
            return after && after != before;
        },
        caretLimit);
    return hasMoved ? after : std::nullopt;
}

/// Learns from the caret where the characters are, by moving it over the beginning of the letter.
void measureText(Stage& stage) {
    const auto home = caretAfter(stage, Key::home, ModifierFlags::command);
    const auto second = caretAfter(stage, Key::right);
    const auto below = caretAfter(stage, Key::down);
    if (home && second && below) {
        stage.grid = {home->x, home->y, second->x - home->x, below->y - home->y};
    }
    const bool isSensible = stage.grid.characterWidth > 4 && stage.grid.lineHeight > 8;
    stage.report.step("caret", "follows ⌘Home, → and ↓", isSensible ? "follows ⌘Home, → and ↓" : "does not");
}

void strikeKeys(Stage& stage) {
    const auto held = [&] { return stage.screen.keysHeld(); };
    stage.user.keyDown(Key::k, ModifierFlags::shift);
    stage.expect("while ⇧K is down", "2 keys with shift", held);
    stage.user.keyUp(Key::k, ModifierFlags::shift);
    stage.expect("when it is up", "none", held);
    stage.user.type("eyz");
    stage.user.strike(Key::deleteBackward);
    stage.user.type("s: ");
    for (const auto key : {Key::a, Key::b, Key::g}) stage.user.strike(key, ModifierFlags::option);
    stage.letter += "Keys: å∫©";
}

}  // namespace

void typeTheLetter(Stage& stage) {
    stage.report.chapter("The phone is a keyboard");
    type(stage, "Dear Studio, THIS WAS TYPED ON A Phone!\n");
    type(stage, "The quick brown fox jumps over the lazy dog.\n");
    stage.expectLetter("typed with capitals, saved with ⌘S");

    strikeKeys(stage);
    stage.user.strike(Key::returnKey);
    stage.letter += "\n";
    stage.expectLetter("key strokes, ⌥A ⌥B ⌥G among them");

    stage.user.strike(Key::tab);
    stage.letter += "\t";
    type(stage, "Ünïcödé: å ∫ ü © € – “Привет, Москва!” 你好\n");
    type(stage, "\tEmoji: 😀 🎬 🎧 👍🏽 👩‍💻");
    stage.expectLetter("tab, option characters, Cyrillic, emoji");
    measureText(stage);
}

}  // namespace orbinex::demo
