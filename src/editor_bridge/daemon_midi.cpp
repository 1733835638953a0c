// The MIDI surface: the iPhone's commands out, the workstation's faders in.

#include <cstdint>
#include <variant>

#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/known_editors.h"
#include "editor_bridge/midi_surface.h"
#include "editor_bridge/session_edits.h"
#include "protocol/session_encoding.h"

namespace orbinex {

void AppWatcherDaemon::setupMIDISurface() {
    midi_.onSourceChanged = [this] {
        setMIDISurfaceOnline(midi_.isSourceOnline());
        if (isBLEClientConnected_) send(encodeHeader(*dawSnapshot));
    };
    // Copied, not made, on the thread of the messages; and jobs that were posted may outlive this object.
    midi_.onMessage = [this, apply = MainQueue::Job(lifetime_.guard([this] { applyFaderReports(); }))](
                          const MIDIMessage& message) { handleMIDIFeedback(message, apply); };
    midi_.start();
    setMIDISurfaceOnline(midi_.isSourceOnline());
}

void AppWatcherDaemon::setMIDISurfaceOnline(bool isOnline) {
    dawSnapshot.edit([&](DAWSessionSnapshot& session) { session.midiSurfaceOnline = isOnline; });
}

void AppWatcherDaemon::playOnSurface(const DAWCommand& command) {
    if (const auto* volume = std::get_if<DAWCommand::SetTrackVolume>(&command.value))
        sendFaderPosition(faderChannel(volume->trackIndex), volume->volumeDB);
    for (const auto& message : surfaceControl(command)) sendMIDIMessage(message);
}

void AppWatcherDaemon::sendMIDIMessage(const MIDIMessage& message) {
    if (midi_.isSourceOnline()) midi_.send(message);
}

void AppWatcherDaemon::sendFaderPosition(int channel, double dB) {
    sendMIDIMessage(faderMessage(channel, dB));
}

void AppWatcherDaemon::handleMIDIFeedback(const MIDIMessage& message, const MainQueue::Job& apply) {
    const auto report = faderFeedback(message);
    if (report && faderReports_.put(*report)) queue_.post(apply);
}

void AppWatcherDaemon::applyFaderReports() {
    faderReports_.take(
        [this](const FaderFeedback& report) { applyFaderFeedback(report.trackIndex, report.dB); });
}

void AppWatcherDaemon::applyFaderFeedback(std::int64_t trackIndex, double dB) {
    // Resolve's tracks are told by its script alone.
    if (dawSnapshot->dawID == resolveBundleID) return;
    const bool isMaster = trackIndex == 0;
    if (!isMaster && !findTrack(*dawSnapshot, trackIndex)) return;
    dawSnapshot.edit([&](DAWSessionSnapshot& session) {
        if (isMaster) session.masterVolumeDB = dB;
        if (auto* const track = findTrack(session, trackIndex)) track->volumeDB = dB;
    });
    sendTrackState(trackIndex);
}

}  // namespace orbinex
