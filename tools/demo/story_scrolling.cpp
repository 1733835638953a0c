// The letter scrolls out of sight and back.

#include "stage.h"

namespace orbinex::demo {

namespace {

constexpr int emptyLines = 40;
/// A wheel click each.
constexpr double scrollDelta = 5;
constexpr int scrollPackets = 40;

}  // namespace

void scrollThroughTheLetter(Stage& stage) {
    stage.report.chapter("Scrolling");
    const Box firstLine{stage.grid.left, stage.grid.top, stage.grid.characterWidth * 30,
                        stage.grid.lineHeight};
    stage.pointAt(stage.grid.place(9, 60));
    const auto shown = stage.screen.pixels(firstLine);
    const auto isShown = [&] { return !shown.empty() && stage.screen.pixels(firstLine) == shown; };

    for (int i = 0; i < emptyLines; ++i) stage.user.strike(Key::returnKey);
    stage.letter.append(emptyLines, '\n');
    stage.expectThat("the first line after many returns", "is out of sight", [&] { return !isShown(); });
    for (int i = 0; i < scrollPackets; ++i) stage.user.scroll(0, -scrollDelta);
    stage.expectThat("the first line after scrolling up", "is in sight again", isShown);
    for (int i = 0; i < scrollPackets; ++i) stage.user.scroll(0, scrollDelta);
    stage.expectThat("the first line after scrolling down", "is out of sight", [&] { return !isShown(); });
    for (int i = 0; i < scrollPackets; ++i) stage.user.scroll(0, -scrollDelta);
    stage.expectThat("and after scrolling up", "is in sight again", isShown);
    stage.expectLetter("the letter in the end");
}

}  // namespace orbinex::demo
