// The phone's keyboard: text of every kind, key strokes, and another layout of the desktop.

#include "desktop_settings.h"
#include "stage.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr auto caretLimit = 2s;
constexpr int measurements = 10;
constexpr auto layoutLimit = 2s;

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

/// Where the caret goes at the beginning of the letter tells where the characters are.
std::optional<TextGrid> measureText(Stage& stage) {
    const auto home = caretAfter(stage, Key::home, ModifierFlags::command);
    const auto second = caretAfter(stage, Key::right);
    const auto below = caretAfter(stage, Key::down);
    if (!home || !second || !below) return std::nullopt;
    const TextGrid grid{home->x, home->y, second->x - home->x, below->y - home->y};
    const bool isSensible = grid.characterWidth > 4 && grid.lineHeight > grid.characterWidth;
    return isSensible ? std::optional(grid) : std::nullopt;
}

/// The editor may still be drawing what came before, so what counts is what is seen twice.
void learnWhereTheTextIs(Stage& stage) {
    std::optional<TextGrid> last;
    for (int i = 0; i < measurements; ++i) {
        const auto grid = measureText(stage);
        if (grid && grid == last) {
            stage.grid = *grid;
            stage.report.step("caret", "follows ⌘Home, → and ↓", "follows ⌘Home, → and ↓");
            return;
        }
        last = grid;
    }
    stage.report.step("caret", "follows ⌘Home, → and ↓", "does not");
    throw Ended{"without knowing where the text is the story cannot go on"};
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

/// The desktop's keyboard changes under the phone's hands; what the phone types stays what it is.
void typeOnAnotherLayout(Stage& stage) {
    const auto use = [&](const char* layout, const char* variant, const char* ownCharacter) {
        stage.expectThat("the desktop's keyboard", layout, [&] {
            return stage.desktop.setKeyboardLayout(layout, variant) &&
                   stage.loop.waitUntil([&] { return stage.program.hasKeyFor(ownCharacter); }, layoutLimit);
        });
    };
    use("de", "", "ö");
    type(stage, "\nZypern & Größe @ {Yoga}");
    stage.expectLetter("typed through the German layout");
    use("us", "mac", "∫");
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
    type(stage, "Ünïcödé: å ∫ ü © € – “Привет, Москва!”\n");
    type(stage, "\tEmoji: 😀 🎬 🎧 👍🏽 👩‍💻");
    stage.expectLetter("tab, option characters, Cyrillic, emoji");
    typeOnAnotherLayout(stage);
    learnWhereTheTextIs(stage);
}

}  // namespace orbinex::demo
