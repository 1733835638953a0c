// Timecode and playback, the iPhone's transport keys, and the meter tick.

#include "base/text.h"
#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/bridge_lines.h"
#include "editor_bridge/timecode.h"
#include "editor_bridge/transport_keys.h"
#include "protocol/playback_speed.h"

namespace orbinex {

void AppWatcherDaemon::publishTelemetry(const SessionTelemetry& telemetry) {
    setCurrentTelemetry(telemetry);
    if (onTelemetryChanged) onTelemetryChanged(telemetry);
}

void AppWatcherDaemon::setPlayhead(std::int64_t frame) {
    currentPlayheadFrame_ = frame;
    lastPlayheadUpdateUptime_ = queue_.uptime();
}

void AppWatcherDaemon::updateTelemetry(const TimecodeLine& line) {
    if (line.playheadFrame) {
        setPlayhead(*line.playheadFrame);
    } else if (const auto at = timecodeToFrames(line.timecode, line.fps)) {
        setPlayhead(at->frames);
    }
    const auto step = playback_.observe(currentTelemetry->timecode, line.timecode, line.fps, queue_.uptime());
    auto& next = nextTelemetry_;
    next.timecode = line.timecode;
    next.fps = line.fps;
    resolveVersion_ = line.appVersion;
    next.appVersion = line.appVersion;
    next.timelineName = line.timelineName;
    next.pageName = uppercased(line.pageName);
    const bool isPlaying = step.movement == PlaybackTracker::Movement::played;
    next.playbackSpeed = isPlaying ? step.speed : std::string_view(currentTelemetry->playbackSpeed);
    next.isPlaying = isPlaying || currentTelemetry->isPlaying;
    if (step.movement != PlaybackTracker::Movement::none) armPlaybackStopTimer();
    if (next != *currentTelemetry) publishTelemetry(next);
}

void AppWatcherDaemon::armPlaybackStopTimer() {
    playbackStopTimer_ = queue_.after(PlaybackTracker::standstill, [this] {
        if (!currentTelemetry->isPlaying) return;
        SessionTelemetry telemetry = *currentTelemetry;
        telemetry.isPlaying = false;
        telemetry.playbackSpeed = PlaybackSpeed::stopped;
        publishTelemetry(telemetry);
    });
}

void AppWatcherDaemon::handleTransportKey(std::uint16_t keycode, ModifierFlags modifiers) {
    if (!modifiers.isEmpty()) return;
    const auto effect = transportKeyEffect(keycode, *currentTelemetry);
    if (!effect) return;
    if (effect->step != 0) {
        setPlayhead(steppedFrame(currentPlayheadFrame_, effect->step).value_or(currentPlayheadFrame_));
    }
    if (effect->telemetry != *currentTelemetry) publishTelemetry(effect->telemetry);
}

void AppWatcherDaemon::meterTick() {
    const auto& packet = meterEngine_.makeMeterPacket({.tracks = dawSnapshot->tracks,
                                                       .clipMetaByIndex = trackClipMetaByIndex_,
                                                       .playheadFrame = currentPlayheadFrame_,
                                                       .lastPlayheadUpdateUptime = lastPlayheadUpdateUptime_,
                                                       .isPlaying = currentTelemetry->isPlaying,
                                                       .playbackSpeed = currentTelemetry->playbackSpeed,
                                                       .framesPerSecond = currentTelemetry->fps,
                                                       .selectedTrackIndex = selectedTrackIndex_,
                                                       .editorRunning = isResolveRunning(),
                                                       .masterVolumeDB = dawSnapshot->masterVolumeDB,
                                                       .masterMuted = dawSnapshot->masterMuted},
                                                      queue_.uptime());
    latestMeterPacket.edit([&](DAWMeterPacket& latest) { latest = packet; });
    if (!isBLEClientConnected_) return;
    encodeMeter(packet, meterMessage_);
    send(meterMessage_);
}

}  // namespace orbinex
