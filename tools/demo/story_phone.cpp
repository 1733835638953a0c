// What is done in the phone's window, by hand, reaches the desktop and the editor; what comes back is shown.

#include <QQuickWindow>
#include <algorithm>
#include <chrono>

#include "base/numbers.h"
#include "editor_bridge/timecode.h"
#include "hand/hand.h"
#include "stage.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr double fingerTolerance = 1.5;
constexpr auto windowLimit = 10s;
constexpr auto watchInterval = 100ms;
constexpr int wheelClicks = 20;
/// In which the meters have risen, and every window has shown what it was last told.
constexpr auto sceneTime = 1s;
/// Of the timeline, in frames a second.
constexpr double sceneRate = 24;
constexpr auto voiceLimit = 4s;
/// As high as the phone.
constexpr QSize mainWindowSize(860, 904);

std::string lastCall(const Stage& stage) {
    const auto calls = stage.editor.calls();
    return calls.empty() ? "nothing" : calls.back();
}

const DAWTrackState* trackOfModel(const Stage& stage, std::int64_t index) {
    const auto& tracks = stage.program.bridge().dawSnapshot->tracks;
    const auto found = std::ranges::find(tracks, index, &DAWTrackState::index);
    return found == tracks.end() ? nullptr : &*found;
}

bool isHeard(const Stage& stage, std::int64_t index) {
    const auto& meters = stage.program.bridge().latestMeterPacket->channelMeters;
    const auto found = std::ranges::find(meters, index, &TrackChannelMeter::trackIndex);
    return found != meters.end() && found->peakDBFS > -24;
}

}  // namespace

void useThePhonesWindow(Stage& stage) {
    stage.report.chapter("The phone's own window");
    auto& window = stage.phoneWindow;
    stage.expect("it shows the computer", Program::computerName, [&] { return window.text("computer"); });
    stage.expect("and the link", "Connected", [&] { return window.text("link"); });

    const auto from = stage.screen.pointer();
    constexpr int right = 90;
    constexpr int up = 60;
    window.drag("trackpad", right, -up);
    stage.expectThat("a drag over its trackpad", "moves the pointer as far", [&] {
        const auto at = stage.screen.pointer();
        return std::abs(at.x - from.x - right) < fingerTolerance &&
               std::abs(at.y - from.y + up) < fingerTolerance;
    });
    const auto typed = "Typed in the window.";
    window.type("field", typed);
    stage.letter += typed;
    stage.expectLetter("its field types");

    const Box firstLine{stage.grid.left, stage.grid.top, stage.grid.characterWidth * 30,
                        stage.grid.lineHeight};
    stage.user.strike(Key::home, ModifierFlags::command);
    stage.pointAt(stage.grid.place(9, 60));
    const auto shown = stage.screen.pixels(firstLine);
    const auto isShown = [&] { return !shown.empty() && stage.screen.pixels(firstLine) == shown; };
    window.turnWheel("trackpad", -wheelClicks);
    stage.expectThat("the wheel over its trackpad", "scrolls", [&] { return !isShown(); });
    window.turnWheel("trackpad", wheelClicks);
    stage.expectThat("and back", "scrolls", isShown);
}

void mixInThePhonesWindow(Stage& stage) {
    auto& window = stage.phoneWindow;
    stage.expect("the phone's window shows track 4", "Line-up", [&] { return window.text("strip4/name"); });
    const auto* const before = trackOfModel(stage, 3);
    const double volume = before ? before->volumeDB : 0;
    window.drag("strip3/fader", 0, 24);
    stage.expectThat("the fader of Effects, dragged down", "is lower in the session", [&] {
        const auto* effects = trackOfModel(stage, 3);
        return effects && effects->volumeDB < volume - 1;
    });
    const auto* const after = trackOfModel(stage, 3);
    const std::string wanted = after ? formatFixed(after->volumeDB, 1) : "none";
    stage.expect("as the phone shows it", wanted, [&] { return window.text("strip3/volume"); });
    stage.expect(
        "and as the editor was asked",
        R"(clip(3, 1):SetProperty("AudioVolume", )" + formatDecimal(after ? after->volumeDB : 0) + ")",
        [&] { return lastCall(stage); });
    window.click("strip3/mute");
    stage.expect("mute on Effects", R"(timeline:SetTrackEnable("audio", 3, false))",
                 [&] { return lastCall(stage); });
    for (const char* const command : {"MUTE|3|0", "VOL|3|0"}) stage.user.control(command);
}

void showEverything(Stage& stage, const std::string& picture) {
    stage.report.chapter("All of it side by side");
    auto& window = stage.phoneWindow;
    auto& face = stage.program.face();
    // Only the program and the phone are to be seen.
    stage.desktop.quitEditor();
    for (const char* const command : {"MUTE|2|0", "SOLO|2|0", "PAGE|Fairlight", "SEL|1", "TC|01:00:10:12"})
        stage.user.control(command);
    stage.expect("the editor, as the phone asked", "01:00:10:12",
                 [&] { return framesToTimecode(stage.editor.frame(sceneRate), false, sceneRate); });
    window.click("play");
    stage.expectThat("the phone's play button", "plays",
                     [&] { return window.text("speed") == "1X" && window.text("timecode") > "01:00:10:20"; });
    face.openMainWindow();
    face.scene()->mainWindow()->resize(mainWindowSize);
    stage.expectThat("the main window", "is open", [&] {
        return face.scene() && face.scene()->isMainWindowVisible() && face.scene()->mainWindow()->isExposed();
    });
    const QPoint icon = face.trayIcon().geometry().center();
    stage.pointAt({icon.x(), icon.y()});
    stage.user.tap(1);
    stage.expectThat("a tap on the tray icon", "opens the panel",
                     [&] { return face.scene()->isPanelVisible() && face.scene()->panel()->isExposed(); });
    stage.expect("the panel", "Connected to Studio iPhone",
                 [&] { return Hand(*face.scene()->panel()).text("statusLine").toStdString(); });
    stage.loop.linger(sceneTime);
    // Between two sentences the voice is silent.
    stage.loop.waitUntil([&] { return isHeard(stage, 1); }, voiceLimit);
    // A finger is on the trackpad.
    for (int step = 0; step < 12; ++step) stage.user.move(-6, 4);
    const bool isTaken = stage.desktop.takePicture(picture);
    stage.report.step("picture of the desktop", "taken", isTaken ? "taken" : "not taken");
    stage.user.strike(Key::escape);
    stage.expectThat("Escape", "closes the panel", [&] { return !face.scene()->isPanelVisible(); });
    face.scene()->mainWindow()->close();
}

void setTheStage(Stage& stage) {
    auto& phone = stage.program.phone();
    phone.setAdvertising(true);
    stage.loop.waitUntil([&] { return !stage.program.link().untrustedNearbyDevices().empty(); }, windowLimit);
    stage.program.link().connectNearbyDevice(phone.identifier());
    stage.loop.waitUntil([&] { return *stage.program.link().phase == LinkPhase::connected; }, windowLimit);
    openTheEditorToPlay(stage);
}

void letPlay(Stage& stage) {
    stage.report.chapter(
        "Now you. The phone's window is the phone: drag on its trackpad to move the pointer of the desktop, "
        "tap\n"
        "to click, type in its field. Tap on the editor and play, move the faders. Close the phone to end.");
    auto* const watch = new QTimer(&stage.program.face().trayIcon());
    QObject::connect(watch, &QTimer::timeout, watch, [&stage] {
        if (!stage.phoneWindow.isOpen()) stage.loop.end({"the phone's window was closed", 0});
    });
    watch->start(watchInterval);
}

}  // namespace orbinex::demo
