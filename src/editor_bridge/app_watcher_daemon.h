#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "audio/clip_source_opener.h"
#include "audio/fairlight_audio_meter_engine.h"
#include "audio/resolve_track_clip_meta.h"
#include "base/lifetime.h"
#include "base/main_queue.h"
#include "editor_bridge/command_file.h"
#include "editor_bridge/editor_bridge.h"
#include "editor_bridge/fader_reports.h"
#include "editor_bridge/midi_endpoints.h"
#include "editor_bridge/playback_tracker.h"
#include "editor_bridge/script_host.h"
#include "editor_bridge/script_line_reader.h"
#include "editor_bridge/system_volume.h"
#include "editor_bridge/workspace.h"
#include "protocol/meter_packet.h"

namespace orbinex {

struct KnownEditor;
struct TimecodeLine;

/// The editor bridge. It watches which application is in front, keeps the session of the editor that the
/// iPhone mirrors, runs the bridge script while Resolve runs, and carries out the iPhone's commands. A duty a
/// file:
///
/// | file | duty |
/// |---|---|
/// | app_watcher_daemon.cpp | creation, applications, the link's coming and going |
/// | daemon_script.cpp | the script's process, what it prints, what it is told |
/// | daemon_commands.cpp | the iPhone's commands, the session that is sent, the system's volume |
/// | daemon_midi.cpp | the MIDI surface: commands out, the workstation's faders in |
/// | daemon_telemetry.cpp | timecode, playback, transport keys, the meter tick |
class AppWatcherDaemon final : public EditorBridge {
  public:
    using Uptime = std::chrono::nanoseconds;
    static constexpr std::chrono::milliseconds supervisorInterval{2500};
    static constexpr std::chrono::milliseconds meterInterval{66};
    /// Tracks of the script that are remembered, far more than an editor has; lines about others are ignored.
    static constexpr std::size_t mostTracks = 20'000;

    struct Ports {
        MainQueue& queue;
        Workspace& workspace;
        ScriptHost& scriptHost;
        CommandFile& commandFile;
        SystemVolume& volume;
        ClipSourceOpener& clips;
        MIDIEndpoints& midi;
    };

    /// Begins to watch at once. The ports must outlive it.
    explicit AppWatcherDaemon(const Ports& ports);
    ~AppWatcherDaemon() override;

    void setBLEClientConnected(bool connected) override;
    void handleCommand(const DAWCommand& command) override;
    void handleTransportKey(std::uint16_t keycode, ModifierFlags modifiers) override;

    /// Reads the frontmost application and tells of it, whether it has changed or not.
    void refreshCurrentApp();
    [[nodiscard]] bool isResolveRunning() const;
    /// Starts or stops the script to match whether Resolve runs.
    void ensureResolveBridge();
    /// Sends header, tracks and meters, if the iPhone is connected.
    void broadcastFullDAWSnapshot();

    Published<std::string, AppWatcherDaemon> activeAppName;
    Published<DAWSessionSnapshot, AppWatcherDaemon> dawSnapshot{DAWSessionSnapshot::placeholder()};
    Published<DAWMeterPacket, AppWatcherDaemon> latestMeterPacket{DAWMeterPacket::placeholder()};

    [[nodiscard]] const ResolveTrackClips& trackClipMetaByIndex() const { return trackClipMetaByIndex_; }
    /// Timeline frame at which the playhead was when it was last reported or moved, and when that was.
    [[nodiscard]] std::int64_t currentPlayheadFrame() const { return currentPlayheadFrame_; }
    [[nodiscard]] Uptime lastPlayheadUpdateUptime() const { return lastPlayheadUpdateUptime_; }
    /// The track whose spectrum is shown.
    [[nodiscard]] std::int64_t selectedTrackIndex() const { return selectedTrackIndex_; }
    [[nodiscard]] bool isBridgeRunning() const { return resolveProcess_ && resolveProcess_->isRunning(); }

  private:
    // Applications
    void applicationActivated(const RunningApplication& application);
    void applicationTerminated(const RunningApplication& application);
    void publishCurrentApp(const RunningApplication& application);
    void updateEditorIdentity(const std::string& bundleID);
    void setEditor(const KnownEditor& editor);

    // The script
    void startResolveBridge();
    void stopResolveBridge();
    void enqueueResolveCommand(std::string_view line);
    void ingestResolveOutput(ByteView read);
    void handleLine(std::string_view line);
    void handleTimecodeLine(std::string_view line);
    void handleHeaderLine(std::string_view line);
    void handleTrackLine(std::string_view line);

    // Commands and the session
    void applyCommandLocally(const DAWCommand& command);
    void reply(const DAWCommand& command);
    void send(ByteView message) const;
    void sendTrackState(std::int64_t index) const;
    void syncSystemVolume();
    void setSystemVolume(double dB);

    // The MIDI surface
    void setupMIDISurface();
    void setMIDISurfaceOnline(bool isOnline);
    void playOnSurface(const DAWCommand& command);
    void sendMIDIMessage(const MIDIMessage& message);
    void sendFaderPosition(int channel, double dB);
    /// On the thread of the messages; posts `apply` to the main thread when there is something new.
    void handleMIDIFeedback(const MIDIMessage& message, const MainQueue::Job& apply);
    void applyFaderReports();
    void applyFaderFeedback(std::int64_t trackIndex, double dB);

    // Telemetry
    void publishTelemetry(const SessionTelemetry& telemetry);
    void setPlayhead(std::int64_t frame);
    void updateTelemetry(const TimecodeLine& line);
    void armPlaybackStopTimer();
    void meterTick();

    MainQueue& queue_;
    Workspace& workspace_;
    ScriptHost& scriptHost_;
    CommandFile& commandFile_;
    SystemVolume& volume_;
    MIDIEndpoints& midi_;

    bool isBLEClientConnected_ = false;
    ScriptLineReader stdoutBuffer_;
    /// As its script told it last.
    std::string resolveVersion_ = currentTelemetry->appVersion;
    PlaybackTracker playback_;
    /// 01:00:00:00 at 24 frames a second.
    std::int64_t currentPlayheadFrame_ = 86'400;
    Uptime lastPlayheadUpdateUptime_;
    std::int64_t selectedTrackIndex_ = 1;
    ResolveTrackClips trackClipMetaByIndex_;
    /// What a line makes of the telemetry and of a track, kept for their strings' memory.
    SessionTelemetry nextTelemetry_;
    DAWTrackState nextTrack_;
    FairlightAudioMeterEngine meterEngine_;
    /// The last meters as they were sent, kept for their memory.
    Bytes meterMessage_;

    FaderReports faderReports_;

    Timer supervisorTimer_;
    Timer playbackStopTimer_;
    Timer meterTimer_;
    Subscription activateObserver_;
    Subscription launchObserver_;
    Subscription terminateObserver_;
    std::unique_ptr<ScriptHost::Process> resolveProcess_;
    Lifetime lifetime_;
};

}  // namespace orbinex
