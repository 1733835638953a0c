// The script's process, what it prints, and what it is told.

#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/bridge_lines.h"
#include "editor_bridge/bridge_script.h"
#include "editor_bridge/known_editors.h"
#include "editor_bridge/session_edits.h"
#include "protocol/session_encoding.h"

namespace orbinex {

void AppWatcherDaemon::startResolveBridge() {
    stopResolveBridge();
    resolveProcess_ = scriptHost_.launch(
        bridgeScript(commandFile_.path()),
        {[this](ByteView read) { ingestResolveOutput(read); }, [this] { resolveProcess_.reset(); }});
}

void AppWatcherDaemon::stopResolveBridge() {
    playbackStopTimer_.cancel();
    resolveProcess_.reset();
    stdoutBuffer_.clear();
}

void AppWatcherDaemon::enqueueResolveCommand(std::string_view line) {
    commandFile_.append(line);
}

void AppWatcherDaemon::ingestResolveOutput(ByteView read) {
    stdoutBuffer_.take(read, [this](std::string_view line) { handleLine(line); });
}

void AppWatcherDaemon::handleLine(std::string_view line) {
    if (line.starts_with("OXTC|")) {
        handleTimecodeLine(line);
    } else if (line.starts_with("OXHDR|")) {
        handleHeaderLine(line);
    } else if (line.starts_with("OXTRK|")) {
        handleTrackLine(line);
    }
}

void AppWatcherDaemon::handleTimecodeLine(std::string_view line) {
    const auto timecode = parseTimecodeLine(line);
    if (!timecode) return;
    const bool isNews = dawSnapshot->projectName != timecode->timelineName ||
                        timecode->clipsLinked.value_or(dawSnapshot->clipsLinked) != dawSnapshot->clipsLinked;
    if (isNews) {
        dawSnapshot.edit([&](DAWSessionSnapshot& session) {
            session.projectName = timecode->timelineName;
            session.clipsLinked = timecode->clipsLinked.value_or(session.clipsLinked);
        });
    }
    updateTelemetry(*timecode);
}

void AppWatcherDaemon::handleHeaderLine(std::string_view line) {
    const auto header = parseHeaderLine(line);
    if (!header) return;
    setEditor(knownEditors().front());
    dawSnapshot.edit([&](DAWSessionSnapshot& session) { applyHeader(*header, session); });
    if (isBLEClientConnected_) send(encodeHeader(*dawSnapshot));
}

void AppWatcherDaemon::handleTrackLine(std::string_view line) {
    const auto track = parseTrackLine(line);
    if (!track) return;
    const auto known = trackClipMetaByIndex_.find(track->index);
    if (known == trackClipMetaByIndex_.end() && trackClipMetaByIndex_.size() >= mostTracks) return;
    auto& clip = known == trackClipMetaByIndex_.end() ? trackClipMetaByIndex_[track->index] : known->second;
    clip.trackIndex = track->index;
    clip.hasActiveClip = track->hasActiveClip;
    clip.clipUID = track->clipUID;
    clip.clipStartFrame = track->clipStartFrame;
    clip.sourceStartFrame = track->sourceStartFrame;
    clip.filePath = track->filePath;

    const auto* const before = findAudioTrack(*dawSnapshot, track->index);
    readTrack(*track, findTrack(*dawSnapshot, track->index), nextTrack_);
    if (!before || *before != nextTrack_) {
        dawSnapshot.edit([this](DAWSessionSnapshot& session) { putTrack(nextTrack_, session); });
    }
    if (isBLEClientConnected_) send(encodeTrack(nextTrack_));
}

}  // namespace orbinex
