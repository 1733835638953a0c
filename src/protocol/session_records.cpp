#include "protocol/session_records.h"

#include <algorithm>

namespace orbinex {

namespace {

struct ControlModeNames {
    DAWControlMode mode;
    std::string_view rawValue;
    std::string_view wireCode;
};

constexpr ControlModeNames controlModes[] = {
    {DAWControlMode::liveIPC, "LIVE IPC", "I"},
    {DAWControlMode::midiControlSurface, "MIDI SURFACE", "M"},
    {DAWControlMode::verifiedShortcut, "SHORTCUT", "S"},
    {DAWControlMode::unsupported, "UNAVAILABLE", "U"},
};

const ControlModeNames& names(DAWControlMode mode) {
    const auto* const found = std::ranges::find(controlModes, mode, &ControlModeNames::mode);
    return found == std::end(controlModes) ? names(DAWControlMode::unsupported) : *found;
}

DAWTrackState placeholderTrack(int index) {
    const std::string number = std::to_string(index);
    DAWTrackState track;
    track.index = index;
    track.totalTracks = 3;
    track.badge = "A" + number;
    track.name = "Audio " + number;
    track.clipName = "Track " + number;
    track.format = "STEREO";
    track.voiceIsolationAmount = 50;
    track.controlMode = DAWControlMode::liveIPC;
    track.hasActiveClip = true;
    return track;
}

DAWTrackState placeholderMaster() {
    DAWTrackState master;
    master.index = 0;
    master.totalTracks = 3;
    master.badge = "M1";
    master.name = "MASTER";
    master.clipName = "Main Out";
    master.format = "2.0 OUT";
    master.isMaster = true;
    master.controlMode = DAWControlMode::liveIPC;
    master.hasActiveClip = true;
    master.clipUID = "MASTER";
    return master;
}

}  // namespace

std::string_view rawValue(DAWControlMode mode) {
    return names(mode).rawValue;
}

std::optional<DAWControlMode> controlModeFromRawValue(std::string_view text) {
    const auto* const found = std::ranges::find(controlModes, text, &ControlModeNames::rawValue);
    if (found == std::end(controlModes)) return std::nullopt;
    return found->mode;
}

std::string_view wireCode(DAWControlMode mode) {
    return names(mode).wireCode;
}

DAWControlMode controlModeFromWireCode(std::string_view text) {
    const auto* const found = std::ranges::find(controlModes, text, &ControlModeNames::wireCode);
    return found == std::end(controlModes) ? DAWControlMode::unsupported : found->mode;
}

DAWSessionSnapshot DAWSessionSnapshot::placeholder() {
    DAWSessionSnapshot session;
    session.dawID = "com.blackmagic-design.DaVinciResolve";
    session.projectName = "Timeline 1";
    session.tracks = {placeholderTrack(1), placeholderTrack(2), placeholderTrack(3), placeholderMaster()};
    session.colorState.clipName = "Active Clip";
    session.colorState.nodeCount = 4;
    session.colorState.isNodeEnabled = true;
    session.midiSurfaceOnline = true;
    session.clipsLinked = true;
    return session;
}

DAWHeader DAWHeader::of(const DAWSessionSnapshot& session) {
    return {
        .dawID = session.dawID,
        .projectName = session.projectName,
        .masterVolumeDB = session.masterVolumeDB,
        .masterMuted = session.masterMuted,
        .midiSurfaceOnline = session.midiSurfaceOnline,
        .clipsLinked = session.clipsLinked,
        .clipName = session.colorState.clipName,
        .nodeCount = session.colorState.nodeCount,
        .selectedNodeIndex = session.colorState.selectedNodeIndex,
        .isNodeEnabled = session.colorState.isNodeEnabled,
    };
}

}  // namespace orbinex
