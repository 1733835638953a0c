// Selecting with double and triple click and by dragging, and copying and pasting.

#include "stage.h"

namespace orbinex::demo {

void selectAndCopy(Stage& stage) {
    stage.report.chapter("Selecting, copying, pasting");
    const auto selected = [&] { return stage.selections.selected(); };
    const auto copied = [&] { return stage.selections.copied(); };

    stage.aimAt(stage.grid.place(0, 7.5));
    stage.user.tap(1);
    stage.user.tap(2);
    stage.expect("selected by a double click", "Studio", selected);
    stage.user.strike(Key::c, ModifierFlags::command);
    stage.expect("copied with ⌘C", "Studio", copied);

    stage.aimAt(stage.grid.place(1, 22.5));
    for (const int count : {1, 2, 3}) stage.user.tap(count);
    stage.expect("selected by a triple click", "The quick brown fox jumps over the lazy dog.", selected);

    stage.aimAt(stage.grid.place(2, 0));
    stage.user.tap(1);
    stage.aimAt(stage.grid.place(1, 4));
    stage.user.press();
    stage.pointAt(stage.grid.place(1, 19));
    stage.user.release();
    stage.expect("selected by dragging", "quick brown fox", selected);
    stage.expect("button held after it", "none", [&] { return stage.screen.buttonsHeld(); });
    // On a Cyrillic keyboard the key of C gives с, which no key of this desktop has.
    stage.user.command("с", Key::c);
    stage.expect("copied with ⌘ and a Cyrillic letter", "quick brown fox", copied);

    stage.user.strike(Key::end, ModifierFlags::command);
    stage.user.type("\nPasted: ");
    stage.user.command("v", Key::v);
    stage.user.type(", ");
    stage.user.strike(Key::v, ModifierFlags::command);
    stage.letter += "\nPasted: quick brown fox, quick brown fox";
    stage.expectLetter("pasted twice with ⌘V");
}

}  // namespace orbinex::demo
