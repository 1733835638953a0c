// The iPhone's commands, the session that is sent to it, and the volume of the sound output.

#include <algorithm>
#include <cmath>
#include <variant>

#include "base/text.h"
#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/fader_law.h"
#include "editor_bridge/known_editors.h"
#include "editor_bridge/resolve_command_line.h"
#include "editor_bridge/session_edits.h"
#include "editor_bridge/timecode.h"
#include "protocol/session_encoding.h"

namespace orbinex {

namespace {

/// Less than this apart, in dB, the output's volume and the master track's are the same.
constexpr double volumeTolerance = 0.25;

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

}  // namespace

void AppWatcherDaemon::handleCommand(const DAWCommand& command) {
    applyCommandLocally(command);
    const bool isForEveryEditor = std::holds_alternative<DAWCommand::RequestSnapshot>(command.value);
    if (isForEveryEditor || dawSnapshot->dawID == resolveBundleID || isResolveRunning()) {
        if (const auto line = resolveCommandLine(command)) enqueueResolveCommand(*line);
    }
    if (const auto* volume = std::get_if<DAWCommand::SetTrackVolume>(&command.value)) {
        if (volume->trackIndex == 0) setSystemVolume(volume->volumeDB);
    }
    playOnSurface(command);
    reply(command);
}

void AppWatcherDaemon::applyCommandLocally(const DAWCommand& command) {
    std::visit(Overloaded{
                   [this](const DAWCommand::OpenPage& page) {
                       SessionTelemetry telemetry = *currentTelemetry;
                       telemetry.pageName = uppercased(page.pageName);
                       publishTelemetry(telemetry);
                   },
                   [this](const DAWCommand::SetTimecode& position) {
                       SessionTelemetry telemetry = *currentTelemetry;
                       telemetry.timecode = position.timecode;
                       const auto at = timecodeToFrames(position.timecode, telemetry.fps);
                       if (at) setPlayhead(at->frames);
                       publishTelemetry(telemetry);
                   },
                   [this](const DAWCommand::SelectTrack& track) {
                       selectedTrackIndex_ = std::max<std::int64_t>(track.trackIndex, 0);
                   },
                   [](const DAWCommand::RequestSnapshot&) {},
                   [&](const auto&) {
                       dawSnapshot.edit([&](DAWSessionSnapshot& session) { applyCommand(command, session); });
                   },
               },
               command.value);
}

void AppWatcherDaemon::reply(const DAWCommand& command) {
    std::visit(Overloaded{
                   [this](const DAWCommand::SetTrackPan& pan) {
                       if (pan.trackIndex >= 1) sendTrackState(pan.trackIndex);
                   },
                   [this](const DAWCommand::SelectTrack&) { meterTick(); },
                   // The telemetry that they changed has been sent.
                   [](const DAWCommand::OpenPage&) {},
                   [](const DAWCommand::SetTimecode&) {},
                   [this](const auto& value) {
                       if constexpr (requires { value.trackIndex; }) {
                           sendTrackState(value.trackIndex);
                       } else {
                           broadcastFullDAWSnapshot();
                       }
                   },
               },
               command.value);
}

void AppWatcherDaemon::send(ByteView message) const {
    if (onDAWPacketReady) onDAWPacketReady(message);
}

void AppWatcherDaemon::sendTrackState(std::int64_t index) const {
    if (const auto* track = findTrack(*dawSnapshot, index)) send(encodeTrack(*track));
}

void AppWatcherDaemon::broadcastFullDAWSnapshot() {
    if (!isBLEClientConnected_) return;
    send(encodeHeader(*dawSnapshot));
    // A copy: whoever is told may change the session.
    const auto tracks = dawSnapshot->tracks;
    for (const auto& track : tracks) send(encodeTrack(track));
    meterTick();
}

void AppWatcherDaemon::syncSystemVolume() {
    const auto volume = volume_.read();
    if (!volume) return;
    const double dB = faderScalarToDB(*volume);
    if (std::abs(dawSnapshot->masterVolumeDB - dB) <= volumeTolerance) return;
    const auto isMaster = [](const DAWTrackState& track) { return track.isMaster || track.index == 0; };
    dawSnapshot.edit([&](DAWSessionSnapshot& session) {
        session.masterVolumeDB = dB;
        const auto master = std::ranges::find_if(session.tracks, isMaster);
        if (master != session.tracks.end()) master->volumeDB = dB;
    });
    const auto master = std::ranges::find_if(dawSnapshot->tracks, isMaster);
    if (master != dawSnapshot->tracks.end() && isBLEClientConnected_) send(encodeTrack(*master));
}

void AppWatcherDaemon::setSystemVolume(double dB) {
    volume_.write(faderDBToScalar(clampedFaderDB(dB)));
}

}  // namespace orbinex
