#include "stage.h"

#include <chrono>
#include <cstdlib>
#include <optional>

#include "desktop_settings.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

/// Far more than a busy machine needs.
constexpr auto stepLimit = 6s;
constexpr auto startLimit = 20s;
constexpr int glideSteps = 12;
/// Longer than the time in which GTK counts clicks, and than the editor busies itself after saving.
constexpr auto aimTime = 700ms;

}  // namespace

bool Stage::expect(std::string_view name, std::string_view expected,
                   const std::function<std::string()>& read) {
    std::string last;
    const bool isMet = loop.waitUntil(
        [&] {
            last = read();
            return last == expected;
        },
        stepLimit);
    report.step(name, expected, last);
    return isMet;
}

bool Stage::expectThat(std::string_view name, std::string_view fact, const std::function<bool()>& holds) {
    return expect(name, fact, [&] { return holds() ? std::string(fact) : "not so"; });
}

std::string Stage::applicationInFront() const {
    const auto* told = lastTold<ControlMessage::ActiveApp>([](const auto&) { return true; });
    return told ? told->bundleID : "none";
}

void Stage::bringToTheFront(std::string_view name, std::uint32_t colour) {
    constexpr int shortestRun = 100;
    std::optional<Box> window;
    const auto isShown = [&] {
        window = screen.find(colour, shortestRun);
        return window && window->width > 600 && window->height > 200;
    };
    const bool isFound = loop.waitUntil(isShown, stepLimit);
    report.step(name, "appears", isFound ? "appears" : "does not");
    if (!isFound) return;
    pointAt({window->x + window->width / 2, window->y + window->height / 2});
    user.tap(1);
}

void Stage::pointAt(ScreenProbe::Pointer place) {
    const auto isThere = [&] {
        const auto at = screen.pointer();
        return std::abs(at.x - place.x) <= 1 && std::abs(at.y - place.y) <= 1;
    };
    const auto from = screen.pointer();
    for (int i = 0; i < glideSteps; ++i) {
        user.move((place.x - from.x) / static_cast<double>(glideSteps),
                  (place.y - from.y) / static_cast<double>(glideSteps));
    }
    if (!loop.waitUntil(isThere, stepLimit)) {
        const auto at = screen.pointer();
        report.step("points at the text", std::to_string(place.x) + ", " + std::to_string(place.y),
                    std::to_string(at.x) + ", " + std::to_string(at.y));
    }
}

void Stage::aimAt(ScreenProbe::Pointer place) {
    pointAt(place);
    loop.linger(aimTime);
}

void Stage::expectLetter(std::string_view name) {
    user.command("s", Key::s);
    expect(name, letter, [&] { return desktop.savedText(); });
}

void openTheDesktop(EventLoop& loop, Report& report, PrivateDesktop& desktop, const ScreenProbe& screen) {
    report.chapter("A desktop of its own, " + desktop.display());
    const auto step = [&](const char* name, const char* fact, const std::function<bool()>& holds) {
        const bool isMet = loop.waitUntil(holds, startLimit);
        report.step(name, fact, isMet ? fact : "not so");
        if (!isMet) throw Ended{"the desktop does not come up"};
    };
    desktop.setBackground("#24343f");
    // Its option key gives further characters, as on the phone's own keyboard.
    const bool isLayoutSet = desktop.setKeyboardLayout("us", "mac");
    report.step("keyboard layout", "us(mac)", isLayoutSet ? "us(mac)" : "not set");
    desktop.startSoundServer();
    desktop.startWindowManager();
    step("window manager", "runs", [&] { return screen.hasWindowManager(); });
    desktop.startTray();
    desktop.startEditor();
    step("text editor", "shows its paper", [&] {
        const auto paper = screen.find(paperColour);
        return paper && paper->width > 600 && paper->height > 300;
    });
}

}  // namespace orbinex::demo
