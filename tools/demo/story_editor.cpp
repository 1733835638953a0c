// An editing application comes to the front; the phone shows its session and controls it.

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <variant>

#include "base/numbers.h"
#include "editor_bridge/known_editors.h"
#include "stage.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr double fps = 24;
constexpr std::int64_t start = 86'400;
/// What its window is filled with.
constexpr std::uint32_t windowColour = 0x20242c;
/// As a person steps: each step is reported before the next.
constexpr auto stepPace = 150ms;
constexpr std::int64_t beginning = start + 48;

constexpr std::int64_t finish = start + 480;

EditorSession session(const ClipFiles& clips) {
    const auto track = [](const char* name, const DemoClip& clip, std::int64_t from) {
        return EditorTrack{
            .name = name,
            .clips = {{.name = clip.name(), .start = from, .finish = finish, .path = clip.path}}};
    };
    EditorSession session;
    session.timeline = "Reel 1";
    session.tracks = {track("Dialogue", clips.speech, start), track("Music", clips.sweep, start),
                      track("Effects", clips.noise, start + 240), track("Line-up", clips.tone, start),
                      track("Camera", clips.camera, start)};
    return session;
}

SessionTelemetry telemetry(const Stage& stage) {
    const auto* told = stage.lastTold<SessionTelemetry>([](const auto&) { return true; });
    return told ? *told : SessionTelemetry();
}

std::string transport(const Stage& stage) {
    const auto now = telemetry(stage);
    return now.timecode + ", " + now.playbackSpeed;
}

const DAWTrackState* track(const Stage& stage, std::int64_t index) {
    return stage.lastTold<DAWTrackState>([&](const DAWTrackState& told) { return told.index == index; });
}

std::string nameOf(const DAWTrackState* track) {
    return track ? track->name + " (" + track->clipName + ")" : "none";
}

std::string header(const Stage& stage) {
    const auto* told = stage.lastTold<DAWHeader>([](const auto&) { return true; });
    return told
               ? told->projectName + ", " + told->clipName + ", " + std::to_string(told->nodeCount) + " nodes"
               : "none";
}

std::string joined(const std::vector<std::string>& lines) {
    std::string result;
    for (const auto& line : lines) result += (result.empty() ? "" : " ") + line;
    return result.empty() ? "nothing" : result;
}

void openTheEditor(Stage& stage) {
    stage.editor.open(session(stage.clips));
    stage.editor.seek(beginning);
    stage.desktop.startEditingApplication(stage.editor.path().string(), fps);
    stage.bringToTheFront("the editor's window", windowColour);
    stage.expect("in front, as the phone is told", resolveBundleID,
                 [&] { return stage.applicationInFront(); });
    stage.expect("the session", "Reel 1, Shot 12, 3 nodes", [&] { return header(stage); });
    stage.expect("the first track", "Dialogue (Interview.wav)", [&] { return nameOf(track(stage, 1)); });
    stage.expect("a track between its clips", "Effects ([Door.wav])",
                 [&] { return nameOf(track(stage, 3)); });
    stage.expect("the transport", "01:00:02:00, 0X", [&] { return transport(stage); });
}

/// The keys go to the editor's window like any others; what the phone shows comes from the editor.
void playAndStep(Stage& stage) {
    stage.user.strike(Key::l);
    stage.expect("L plays", "1X", [&] { return telemetry(stage).playbackSpeed; });
    stage.expectThat("the timecode that the phone shows", "runs", [&] {
        return telemetry(stage).timecode > "01:00:02:12" && stage.editor.frame(fps) > beginning + 12;
    });
    stage.user.strike(Key::k);
    stage.expect("K pauses", "0X", [&] { return telemetry(stage).playbackSpeed; });
    stage.expectThat("the editor itself", "stands", [&] { return stage.editor.speed() == 0; });
    const auto pausedAt = stage.editor.frame(fps);
    for (const auto key : {Key::right, Key::right, Key::left}) {
        stage.user.strike(key);
        stage.loop.linger(stepPace);
    }
    stage.expect("two steps forward, one back", std::to_string(pausedAt + 1),
                 [&] { return std::to_string(stage.editor.frame(fps)); });
    stage.expect("where the bridge takes the playhead to be", std::to_string(pausedAt + 1),
                 [&] { return std::to_string(stage.program.bridge().currentPlayheadFrame()); });
}

void useThePanels(Stage& stage) {
    struct Act {
        const char* name;
        const char* command;
        /// What the editor is asked for.
        const char* expected;
    };
    constexpr std::array acts{
        Act{"fader of Music to -6 dB", "VOL|2|-6", R"(clip(2, 1):SetProperty("AudioVolume", -6))"},
        Act{"pan of Music", "PAN|2|-30", R"(clip(2, 1):SetProperty("AudioPan", -30))"},
        Act{"mute Music", "MUTE|2|1", R"(timeline:SetTrackEnable("audio", 2, false))"},
        Act{"lock Dialogue", "ARM|1|1", R"(timeline:SetTrackLock("audio", 1, true))"},
        Act{"voice isolation", "VISO|1|1|80",
            "timeline:SetVoiceIsolationState(1, {amount = 80, isEnabled = true}) "
            R"(clip(1, 1):SetProperty("AudioVoiceIsolationEnabled", true) )"
            R"(clip(1, 1):SetProperty("AudioVoiceIsolationAmount", 80))"},
        Act{"dialogue leveler", "DLEV|1|1|2.5",
            R"(clip(1, 1):SetProperty("AudioDialogueLevelerEnabled", true) )"
            R"(clip(1, 1):SetProperty("AudioDialogueLevelerOutputGain", 2.5))"},
        Act{"unlink clips", "LINK|0", "timeline:SetClipsLinked(false)"},
        Act{"the Color page", "PAGE|Color", R"(resolve:OpenPage("color"))"},
        Act{"colour wheels", "CDL|2|0.1|0|0|1.2|1|1|1|0.9",
            R"(video:SetCDL({NodeIndex = "2", Offset = "0.1000 0.0000 0.0000", Power = "1.0000 1.0000 1.0000", )"
            R"(Saturation = "0.900", Slope = "1.2000 1.0000 1.0000"}))"},
        Act{"node 2 off", "NEN|2|0", "graph:SetNodeEnabled(2, false)"},
        Act{"to a timecode", "TC|01:00:04:00", R"(timeline:SetCurrentTimecode("01:00:04:00"))"},
    };
    for (const auto& act : acts) {
        const auto before = stage.editor.calls().size();
        stage.user.control(act.command);
        stage.expect(act.name, act.expected, [&] {
            const auto calls = stage.editor.calls();
            return joined(
                {calls.begin() + static_cast<std::ptrdiff_t>(std::min(before, calls.size())), calls.end()});
        });
    }
    stage.user.control("SOLO|2|1");
    stage.expect("Music on the phone, solo as well", "-6.0 dB, muted, solo", [&] {
        const auto* music = track(stage, 2);
        if (!music) return std::string("none");
        return formatFixed(music->volumeDB, 1) + " dB" + (music->isMuted ? ", muted" : "") +
               (music->isSolo ? ", solo" : "");
    });
    stage.expect("the page on the phone", "COLOR", [&] { return telemetry(stage).pageName; });
}

void moveTheMaster(Stage& stage) {
    stage.user.control("VOL|0|-6");
    stage.expect("master fader to -6 dB: the output's volume", "70",
                 [&] { return stage.desktop.outputVolume(); });
    stage.expect("and the master on the phone", "-6.0",
                 [&] { return track(stage, 0) ? formatFixed(track(stage, 0)->volumeDB, 1) : "none"; });
}

}  // namespace

void controlTheEditor(Stage& stage) {
    stage.report.chapter("An editor comes to the front");
    openTheEditor(stage);
    stage.report.chapter("The phone plays it");
    playAndStep(stage);
    stage.report.chapter("The phone shows what the clips sound like");
    hearTheClips(stage);
    stage.report.chapter("The phone is its mixer and its colour panel");
    useThePanels(stage);
    moveTheMaster(stage);
    stage.report.chapter("The mixer in the phone's window");
    mixInThePhonesWindow(stage);
}

void restartTheEditor(Stage& stage) {
    stage.report.chapter("The editor quits, and comes back");
    stage.editor.quit();
    stage.desktop.quitEditingApplication();
    stage.expectThat("the editor quits: its script", "has ended",
                     [&] { return !stage.program.bridge().isBridgeRunning(); });
    stage.user.control("MUTE|1|1");
    stage.editor.open(session(stage.clips));
    stage.editor.seek(beginning);
    stage.desktop.startEditingApplication(stage.editor.path().string(), fps);
    stage.expect("it is back, and so is what waited for it", R"(timeline:SetTrackEnable("audio", 1, false))",
                 [&] { return joined(stage.editor.calls()); });
    stage.expect("the transport again", "01:00:02:00, 0X", [&] { return transport(stage); });
}

void openTheEditorToPlay(Stage& stage) {
    stage.editor.open(session(stage.clips));
    stage.editor.seek(beginning);
    stage.desktop.startEditingApplication(stage.editor.path().string(), fps);
    stage.bringToTheFront("the editor's window", windowColour);
}

}  // namespace orbinex::demo
