// A workstation comes to the front that has no scripts: the phone reaches it as a MIDI control surface.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/numbers.h"
#include "editor_bridge/midi_surface.h"
#include "midi_workstation/hex_bytes.h"
#include "stage.h"

namespace orbinex::demo {

namespace {

/// What its window is filled with.
constexpr std::uint32_t windowColour = 0x2a2a30;

std::string surface(const Stage& stage) {
    const auto* told = stage.lastTold<DAWHeader>([](const auto&) { return true; });
    return told && told->midiSurfaceOnline ? "online" : "offline";
}

std::string levelOf(const Stage& stage, std::int64_t index) {
    const auto* told = stage.lastTold<DAWTrackState>([&](const auto& track) { return track.index == index; });
    return told ? formatFixed(told->volumeDB, 1) + " dB" : "none";
}

/// The last messages that the workstation has heard, as many as are expected.
std::string lastHeard(const Stage& stage, std::size_t count) {
    const auto& heard = stage.studio.heard();
    std::string text;
    for (std::size_t i = heard.size() - std::min(count, heard.size()); i < heard.size(); ++i)
        text += (text.empty() ? "" : ", ") + heard[i];
    return text;
}

void playOnIt(Stage& stage) {
    const struct {
        const char* name;
        const char* command;
        std::string expected;
        std::size_t messages;
    } acts[] = {
        {"fader 1 to -6 dB", "VOL|1|-6", hexText(faderMessage(0, -6)), 1},
        {"Effects to the left", "PAN|3|-100", "B2 0A 00", 1},
        {"Music muted: a button's press and release", "MUTE|2|1", "90 11 7F, 80 11 00", 2},
        {"the master fader to 0 dB", "VOL|0|0", hexText(faderMessage(masterFaderChannel, 0)), 1},
    };
    for (const auto& act : acts) {
        stage.user.control(act.command);
        stage.expect(act.name, act.expected, [&] { return lastHeard(stage, act.messages); });
    }
}

}  // namespace

void useAWorkstation(Stage& stage) {
    stage.report.chapter("A workstation without scripts: the MIDI surface");
    stage.editor.quit();
    stage.desktop.quitEditingApplication();
    stage.expectThat("the editor quits: its script", "has ended",
                     [&] { return !stage.program.bridge().isBridgeRunning(); });
    stage.expect("without a MIDI system, the surface", "offline", [&] { return surface(stage); });
    stage.studio.startServer();
    stage.expect("a JACK server starts: the surface", "online", [&] { return surface(stage); });
    stage.studio.startWorkstation();
    stage.expect("the workstation, to both ports", "connected", [&] { return lastHeard(stage, 1); });
    stage.bringToTheFront("the workstation's window", windowColour);
    stage.expect("in front, as the phone is told", "org.ardour.Ardour",
                 [&] { return stage.applicationInFront(); });

    playOnIt(stage);
    stage.studio.play(hexText(faderMessage(1, -12)));
    stage.expect("it moves its fader 2 to -12 dB: Music on the phone", "-12.0 dB",
                 [&] { return levelOf(stage, 2); });
    // The session's master goes back to the sound output's volume when that is looked at next, perhaps at
    // once.
    bool wasMoved = false;
    const auto masterMoves = stage.program.bridge().dawSnapshot.onDidChange(
        [&](const DAWSessionSnapshot& session) { wasMoved |= session.masterVolumeDB == -20; });
    stage.studio.play(hexText(faderMessage(masterFaderChannel, -20)));
    stage.expectThat("and its master fader to -20 dB: the session's", "-20.0 dB", [&] { return wasMoved; });
    stage.studio.quitWorkstation();
    openTheEditorToPlay(stage);
}

}  // namespace orbinex::demo
