// The pointer goes in a circle and clicks into the editor.

#include <cmath>
#include <numbers>

#include "desktop_settings.h"
#include "stage.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr int circleMoves = 72;
constexpr int movesPerLook = 6;
constexpr double circleRadius = 180;
/// The server counts whole pixels, the phone does not.
constexpr double tolerance = 1.5;

struct Offset {
    double x;
    double y;
};

/// From the right-most point of the circle to where the pointer is after some moves.
Offset onCircle(int moves) {
    const double angle = 2 * std::numbers::pi * moves / circleMoves;
    return {circleRadius * (std::cos(angle) - 1), circleRadius * std::sin(angle)};
}

void drawCircle(Stage& stage) {
    const auto start = stage.screen.pointer();
    int looks = 0;
    int hits = 0;
    for (int i = 1; i <= circleMoves; ++i) {
        const Offset before = onCircle(i - 1);
        const Offset after = onCircle(i);
        stage.user.move(after.x - before.x, after.y - before.y);
        if (i % movesPerLook != 0) continue;
        ++looks;
        const bool isThere = stage.loop.waitUntil(
            [&] {
                const auto at = stage.screen.pointer();
                return std::hypot(at.x - start.x - after.x, at.y - start.y - after.y) < tolerance;
            },
            1s);
        if (isThere) ++hits;
    }
    const auto all = std::to_string(looks);
    stage.report.step("pointer on the circle", all + " of " + all + " looks",
                      std::to_string(hits) + " of " + all + " looks");
}

}  // namespace

void moveAndClick(Stage& stage) {
    stage.report.chapter("The phone is a trackpad");
    drawCircle(stage);
    const auto screen = stage.screen.whole();
    stage.user.move(-1e6F, 1e6F);
    stage.expect("a move far beyond the corner stops at the edge", "0, " + std::to_string(screen.height - 1),
                 [&] {
                     const auto at = stage.screen.pointer();
                     return std::to_string(at.x) + ", " + std::to_string(at.y);
                 });
    auto& face = stage.program.face();
    stage.expectThat("the tray", "has the icon", [&] { return face.trayIcon().geometry().width() > 1; });
    const QPoint icon = face.trayIcon().geometry().center();
    stage.pointAt({icon.x(), icon.y()});
    stage.user.tap(1);
    stage.expectThat("a tap on the tray icon", "opens the panel",
                     [&] { return face.scene() && face.scene()->isPanelVisible(); });
    stage.expect("active window", "orbinex_demo", [&] { return stage.screen.activeWindow(); });

    const auto paper = stage.screen.find(paperColour).value_or(screen);
    stage.pointAt({paper.x + paper.width / 2, paper.y + paper.height / 2});
    stage.user.tap(1);
    stage.expect("active window after a tap on the letter", "Mousepad",
                 [&] { return stage.screen.activeWindow(); });
    stage.expectThat("the panel", "has closed", [&] { return !face.scene()->isPanelVisible(); });
    stage.expectThat("caret", "is in the text", [&] { return stage.screen.find(caretColour).has_value(); });

    stage.user.tap(1, MouseButton::right);
    stage.expect("menus after a right click", "1", [&] { return std::to_string(stage.screen.popups()); });
    stage.user.strike(Key::escape);
    stage.expect("menus after Escape", "0", [&] { return std::to_string(stage.screen.popups()); });
}

}  // namespace orbinex::demo
