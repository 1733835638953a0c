// From the phone's bytes to the editor's model and back to the phone's bytes: the whole link and bridge, the
// script in a real scripting host, and real time.

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include <gmock/gmock.h>
#include <unistd.h>

#include "app/app_coordinator.h"
#include "app/linux/qt_main_queue.h"
#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/known_editors.h"
#include "editor_bridge/linux/linux_script_host.h"
#include "editor_bridge/linux/tmp_command_file.h"
#include "editor_folder.h"
#include "protocol/gatt.h"
#include "protocol/meter_scale.h"
#include "sim/memory_defaults.h"
#include "sim/recording_event_poster.h"
#include "sim/scripted_layout.h"
#include "sim/simulated_clip_media.h"
#include "sim/simulated_midi_endpoints.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "sim/simulated_system_volume.h"
#include "sim/simulated_workspace.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

constexpr auto patience = 20s;

const RunningApplication resolve{std::string(resolveBundleID), "DaVinci Resolve"};

std::filesystem::path newFolder() {
    std::string name = std::filesystem::temp_directory_path() / "orbinex-e2e-XXXXXX";
    return ::mkdtemp(name.data()) ? name : "";
}

/// The program with a phone that is connected, and an editor that runs.
class EditorSessionTest : public testing::Test {
  public:
    void SetUp() override {
        media.sounds["/media/clip.wav"] = std::make_shared<SimulatedSound>(SimulatedSound{.sample = fading});
        ::setenv("ORBINEX_EDITOR_FOLDER", editor.path().c_str(), 1);
        ::unsetenv("ORBINEX_EDITOR_ROUNDS");
        editor.open(session());
        editor.seek(86'450);
        workspace.activate(resolve);
        phone.setAdvertising(true);
        ASSERT_TRUE(waitFor([&] { return !program.centralManager.untrustedNearbyDevices().empty(); }));
        program.centralManager.connectNearbyDevice(phone.identifier());
        ASSERT_TRUE(waitFor([&] { return *program.centralManager.phase == LinkPhase::connected; }));
        ASSERT_TRUE(waitFor([&] { return lastTrack(2) && lastTrack(2)->name == "Music"; }));
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    static EditorSession session() {
        EditorSession session;
        session.tracks = {
            {.name = "Dialogue", .clips = {{.name = "Take 1", .start = 86'400, .finish = 86'500}}},
            {.name = "Music", .clips = {{.name = "Song", .start = 86'400, .finish = 90'000}}}};
        return session;
    }

    /// The clips' sound: half a dB less with every video frame.
    static float fading(std::int64_t frame, int) {
        return static_cast<float>(std::pow(10, -0.5 * static_cast<double>(frame / 2000) / 20));
    }

    static bool waitFor(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
        }
        return true;
    }
    void send(const std::string& command) {
        Bytes bytes{0x16};
        bytes.insert(bytes.end(), command.begin(), command.end());
        phone.notify(OrbinexProtocol::controlCharacteristicUUID, bytes);
    }
    template <class Message>
    const Message* last(const std::function<bool(const Message&)>& isIt) const {
        for (auto it = phone.received.rbegin(); it != phone.received.rend(); ++it) {
            const auto* message = std::get_if<Message>(&it->value);
            if (message && isIt(*message)) return message;
        }
        return nullptr;
    }
    [[nodiscard]] const DAWTrackState* lastTrack(std::int64_t index) const {
        return last<DAWTrackState>([&](const DAWTrackState& track) { return track.index == index; });
    }
    [[nodiscard]] const DAWHeader* lastHeader() const {
        return last<DAWHeader>([](const DAWHeader&) { return true; });
    }
    [[nodiscard]] const SessionTelemetry* lastTelemetry() const {
        return last<SessionTelemetry>([](const SessionTelemetry&) { return true; });
    }

    std::filesystem::path folder = newFolder();
    EditorFolder editor{folder / "editor"};
    QtMainQueue queue;
    SimulatedWorkspace workspace;
    SimulatedSystemVolume volume;
    LinuxScriptHost host{ORBINEX_SCRIPT_HOST, queue};
    TmpCommandFile commandFile{(folder / "commands.txt").string()};
    SimulatedClipMedia media;
    DirectSourceOpener clips{media};
    SimulatedMIDIEndpoints midi;
    AppWatcherDaemon bridge{{queue, workspace, host, commandFile, volume, clips, midi}};
    MemoryDefaults defaults;
    SimulatedRadio radio{queue};
    SimulatedPhone& phone = radio.addPhone(UUID::random(), {2, UUID::random(), "Studio iPhone"});
    WakeNotifier wake;
    RecordingEventPoster poster;
    ScriptedLayoutSource layouts;
    SimulatedShell shell;
    AppPreferences preferences{defaults};
    AppCoordinator program{
        preferences,
        {queue, defaults, radio, wake, poster, layouts, bridge, [] { return std::string(); }, shell.ports()}};
};

/// What the phone sends, what the editor is asked for, and what the phone is told then.
TEST_F(EditorSessionTest, carriesEveryCommandThereAndTheNewStateBack) {
    using Told = std::function<bool(EditorSessionTest&)>;
    const auto track = [](std::int64_t index, auto holds) {
        return Told([=](EditorSessionTest& test) {
            const auto* told = test.lastTrack(index);
            return told && holds(*told);
        });
    };
    const auto header = [](auto holds) {
        return Told([=](EditorSessionTest& test) { return test.lastHeader() && holds(*test.lastHeader()); });
    };
    const auto telemetry = [](auto holds) {
        return Told(
            [=](EditorSessionTest& test) { return test.lastTelemetry() && holds(*test.lastTelemetry()); });
    };
    const struct {
        const char* command;
        Lines calls;
        Told told;
    } rows[] = {
        {"VOL|2|-6.5",
         {R"(clip(2, 1):SetProperty("AudioVolume", -6.5))"},
         track(2, [](const auto& t) { return t.volumeDB == -6.5; })},
        {"MUTE|2|1",
         {R"(timeline:SetTrackEnable("audio", 2, false))"},
         track(2, [](const auto& t) { return t.isMuted; })},
        {"VISO|1|1|80",
         {R"(timeline:SetVoiceIsolationState(1, {amount = 80, isEnabled = true}))",
          R"(clip(1, 1):SetProperty("AudioVoiceIsolationEnabled", true))",
          R"(clip(1, 1):SetProperty("AudioVoiceIsolationAmount", 80))"},
         track(1, [](const auto& t) { return t.voiceIsolationEnabled && t.voiceIsolationAmount == 80; })},
        {"TC|01:00:03:00", {R"(timeline:SetCurrentTimecode("01:00:03:00"))"}, telemetry([](const auto& t) {
             return t.timecode == "01:00:03:00";
         })},
        {"CDL|2|0.1|0|0|1.2|1|1|1|0.9",
         {R"(video:SetCDL({NodeIndex = "2", Offset = "0.1000 0.0000 0.0000", Power = "1.0000 1.0000 1.0000", )"
          R"(Saturation = "0.900", Slope = "1.2000 1.0000 1.0000"}))"},
         header([](const auto& h) { return h.selectedNodeIndex == 2; })},
        {"SEL|2", {}, [](EditorSessionTest& test) { return test.bridge.selectedTrackIndex() == 2; }},
        {"VOL|0|-6", {}, track(0, [](const auto& t) { return t.volumeDB == -6; })},
    };
    volume.position = 0.78;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        editor.forgetCalls();
        phone.received.clear();
        send(row.command);
        EXPECT_TRUE(waitFor([&] { return editor.calls() == row.calls; }))
            << testing::PrintToString(editor.calls());
        EXPECT_TRUE(waitFor([&] { return row.told(*this); }));
        // Taken, not only written.
        EXPECT_TRUE(waitFor([&] { return !std::filesystem::exists(commandFile.path()); }));
    }
    EXPECT_NEAR(volume.writes.back(), 0.6967, 5e-5);
    // What the script reports of the editor itself agrees with what was assumed.
    phone.received.clear();
    editor.seek(86'460);
    send("SYNC");
    EXPECT_TRUE(waitFor([&] {
        const auto* told = lastTrack(2);
        return told && told->isMuted && told->volumeDB == -6.5 && lastTelemetry() &&
               lastTelemetry()->timecode == "01:00:02:12";
    }));

    editor.open(session());
    editor.play(86'450, 1);
    EXPECT_TRUE(waitFor([&] { return lastTelemetry() && lastTelemetry()->playbackSpeed == "1X"; }));
    editor.play(86'450, 4);
    EXPECT_TRUE(waitFor([&] { return lastTelemetry()->playbackSpeed == "+2X"; }));
    editor.play(90'000, -1);
    EXPECT_TRUE(waitFor([&] { return lastTelemetry()->playbackSpeed == "-1X"; }));
    editor.seek(86'400);
    EXPECT_TRUE(
        waitFor([&] { return lastTelemetry()->playbackSpeed == "0X" && !lastTelemetry()->isPlaying; }));
}

TEST_F(EditorSessionTest, metersTheClipUnderThePlayhead) {
    const auto levelBecomes = [&](std::size_t place, double dB) {
        return waitFor([&] {
            const auto* meters = last<DAWMeterPacket>([](const DAWMeterPacket&) { return true; });
            return meters && std::abs(meters->channelMeters.at(place).peakDBFS - dB) < 0.3;
        });
    };
    EXPECT_TRUE(levelBecomes(0, -25));
    editor.seek(86'420);
    EXPECT_TRUE(levelBecomes(0, -10));
    EXPECT_TRUE(levelBecomes(2, -10 + 20 * std::log10(std::sqrt(2)))) << "the master: two tracks of the same";
    send("VOL|1|-20");
    EXPECT_TRUE(levelBecomes(0, -30));
    send("SEL|2");
    EXPECT_TRUE(waitFor([&] {
        const auto* meters = last<DAWMeterPacket>([](const DAWMeterPacket&) { return true; });
        // Seven video frames after the playhead, and eight before.
        return meters && meters->selectedTrackIndex == 2 &&
               meters->amplitudeHistory.back() == meterByte(-13.5) &&
               meters->amplitudeHistory.front() == meterByte(-6);
    }));
}

/// The one that runs the script.
pid_t childProcess() {
    const auto number = std::to_string(::getpid());
    std::ifstream children("/proc/self/task/" + number + "/children");
    pid_t child = 0;
    return children >> child ? child : 0;
}

TEST_F(EditorSessionTest, survivesTheEndOfTheEditorAndOfItsHost) {
    send("MUTE|2|1");
    ASSERT_TRUE(waitFor([&] { return editor.calls().size() == 1; }));
    // The editor quits; its host ends with it, commands wait.
    editor.quit();
    workspace.terminate(resolve);
    EXPECT_FALSE(bridge.isBridgeRunning());
    send("ARM|1|1");
    ASSERT_TRUE(waitFor([&] { return std::filesystem::exists(commandFile.path()); }));
    editor.open(session());
    phone.received.clear();
    workspace.activate(resolve);
    EXPECT_TRUE(
        waitFor([&] { return editor.calls() == Lines{R"(timeline:SetTrackLock("audio", 1, true))"}; }));
    EXPECT_TRUE(waitFor([&] { return lastTrack(1) && lastTrack(1)->isLocked; }));
    EXPECT_TRUE(waitFor([&] { return lastTrack(2) && !lastTrack(2)->isMuted; })) << "another editor now";

    editor.forgetCalls();
    const pid_t killed = childProcess();
    ASSERT_GT(killed, 0);
    ::kill(killed, SIGKILL);
    EXPECT_TRUE(waitFor([&] { return !bridge.isBridgeRunning(); }));
    send("MUTE|2|1");
    send("ARM|1|1");
    EXPECT_TRUE(waitFor([&] {
        return editor.calls() == Lines{R"(timeline:SetTrackEnable("audio", 2, false))",
                                       R"(timeline:SetTrackLock("audio", 1, true))"};
    }));
    EXPECT_NE(childProcess(), killed);
}

}  // namespace
}  // namespace orbinex::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
