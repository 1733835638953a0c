#include "editor_bridge/session_edits.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "base/text.h"
#include "editor_bridge/fader_law.h"

namespace orbinex {

namespace {

/// The first of the tracks that belong behind one with this index.
template <class Tracks>
auto placeOf(Tracks& tracks, std::int64_t index) {
    return std::ranges::partition_point(
        tracks, [&](const DAWTrackState& track) { return !track.isMaster && track.index < index; });
}

/// ASCII in upper case, without another string while there is nothing else.
void assignUppercased(std::string& target, std::string_view text) {
    const bool isASCII =
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (!isASCII) {
        target = uppercased(text);
        return;
    }
    target = text;
    for (char& c : target) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
}

void assignNumbered(std::string& target, std::string_view prefix, std::int64_t number) {
    target = prefix;
    target += std::to_string(number);
}

struct SessionEditor {
    DAWSessionSnapshot& session;

    void operator()(const DAWCommand::SetTrackVolume& c) const {
        const double dB = clampedFaderDB(c.volumeDB);
        if (c.trackIndex == 0) session.masterVolumeDB = dB;
        if (auto* const track = findTrack(session, c.trackIndex)) track->volumeDB = dB;
    }
    void operator()(const DAWCommand::SetTrackPan& c) const {
        if (auto* const track = findTrack(session, c.trackIndex)) track->pan = clampedPan(c.pan);
    }
    void operator()(const DAWCommand::SetTrackMute& c) const {
        if (c.trackIndex == 0) session.masterMuted = c.isMuted;
        if (auto* const track = findTrack(session, c.trackIndex)) track->isMuted = c.isMuted;
    }
    void operator()(const DAWCommand::SetTrackSolo& c) const {
        if (auto* const track = findTrack(session, c.trackIndex)) track->isSolo = c.isSolo;
    }
    void operator()(const DAWCommand::SetTrackArmOrLock& c) const {
        auto* const track = findTrack(session, c.trackIndex);
        if (track) track->isArmed = track->isLocked = c.isArmed;
    }
    void operator()(const DAWCommand::SetVoiceIsolation& c) const {
        auto* const track = findTrack(session, c.trackIndex);
        if (!track) return;
        track->voiceIsolationEnabled = c.enabled;
        track->voiceIsolationAmount = std::clamp<std::int64_t>(c.amount, 0, 100);
    }
    void operator()(const DAWCommand::SetDialogueLeveler& c) const {
        auto* const track = findTrack(session, c.trackIndex);
        if (!track) return;
        track->dialogueLevelerEnabled = c.enabled;
        track->dialogueLevelerGainDB = clampedLevelerDB(c.gainDB);
    }
    void operator()(const DAWCommand::SetClipsLinked& c) const { session.clipsLinked = c.linked; }
    void operator()(const DAWCommand::SetColorCDL& c) const {
        auto& colour = session.colorState;
        colour.selectedNodeIndex = std::max<std::int64_t>(c.nodeIndex, 1);
        colour.liftR = c.liftR;
        colour.liftG = c.liftG;
        colour.liftB = c.liftB;
        colour.gainR = c.gainR;
        colour.gainG = c.gainG;
        colour.gainB = c.gainB;
        colour.contrast = c.contrast;
        colour.saturation = c.saturation;
    }
    void operator()(const DAWCommand::SetColorNodeEnabled& c) const {
        session.colorState.selectedNodeIndex = std::max<std::int64_t>(c.nodeIndex, 1);
        session.colorState.isNodeEnabled = c.enabled;
    }
    void operator()(const DAWCommand::OpenPage&) const {}
    void operator()(const DAWCommand::SetTimecode&) const {}
    void operator()(const DAWCommand::SelectTrack&) const {}
    void operator()(const DAWCommand::RequestSnapshot&) const {}
};

}  // namespace

const DAWTrackState* findTrack(const DAWSessionSnapshot& session, std::int64_t index) {
    const auto found = std::ranges::find(session.tracks, index, &DAWTrackState::index);
    return found == session.tracks.end() ? nullptr : &*found;
}

DAWTrackState* findTrack(DAWSessionSnapshot& session, std::int64_t index) {
    return const_cast<DAWTrackState*>(findTrack(std::as_const(session), index));
}

void applyCommand(const DAWCommand& command, DAWSessionSnapshot& session) {
    std::visit(SessionEditor{session}, command.value);
}

void applyHeader(const HeaderLine& line, DAWSessionSnapshot& session) {
    session.clipsLinked = line.clipsLinked;
    session.colorState.clipName = line.clipName;
    session.colorState.nodeCount = line.nodeCount;
    std::erase_if(session.tracks, [&](const DAWTrackState& track) {
        return !track.isMaster && track.index > line.trackCount;
    });
}

void readTrack(const TrackLine& line, const DAWTrackState* before, DAWTrackState& track) {
    track.index = line.index;
    track.totalTracks = line.totalTracks;
    assignNumbered(track.badge, "A", line.index);
    if (line.name.empty()) {
        assignNumbered(track.name, "Audio ", line.index);
    } else {
        track.name = line.name;
    }
    track.clipName = line.clipName;
    assignUppercased(track.format, line.format);
    track.volumeDB = line.volumeDB;
    track.pan = line.pan;
    track.isMuted = line.isMuted;
    track.isSolo = before && before->isSolo;
    track.isArmed = before && before->isArmed;
    track.isLocked = line.isLocked;
    track.isMaster = false;
    track.voiceIsolationEnabled = line.voiceIsolationEnabled;
    track.voiceIsolationAmount = line.voiceIsolationAmount;
    track.dialogueLevelerEnabled = line.dialogueLevelerEnabled;
    track.dialogueLevelerGainDB = line.dialogueLevelerGainDB;
    track.controlMode = DAWControlMode::liveIPC;
    track.hasActiveClip = line.hasActiveClip;
    track.clipUID = line.clipUID;
}

const DAWTrackState* findAudioTrack(const DAWSessionSnapshot& session, std::int64_t index) {
    const auto place = placeOf(session.tracks, index);
    const bool isThere = place != session.tracks.end() && !place->isMaster && place->index == index;
    return isThere ? &*place : nullptr;
}

void putTrack(const DAWTrackState& track, DAWSessionSnapshot& session) {
    const auto place = placeOf(session.tracks, track.index);
    const bool isThere = place != session.tracks.end() && !place->isMaster && place->index == track.index;
    if (isThere) {
        *place = track;
    } else {
        session.tracks.insert(place, track);
    }
}

}  // namespace orbinex
