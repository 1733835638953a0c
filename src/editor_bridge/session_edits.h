#pragma once

#include <cstdint>

#include "editor_bridge/bridge_lines.h"
#include "protocol/daw_command.h"
#include "protocol/session_records.h"

namespace orbinex {

// What changes a session, as functions on it. Tracks stand in the order of their indices, master tracks last.

/// The first track with this index; null when there is none.
const DAWTrackState* findTrack(const DAWSessionSnapshot& session, std::int64_t index);
DAWTrackState* findTrack(DAWSessionSnapshot& session, std::int64_t index);

/// Does to the session what a command asks for, before the editor has answered. Levels are limited to the
/// range of a fader, pan to -100...100, the leveler's gain to -12...12 dB, the isolation's amount to 0...100;
/// colours are not limited. Commands about tracks that are not there, and those that are not about the
/// session (page, timecode, selection), change nothing.
void applyCommand(const DAWCommand& command, DAWSessionSnapshot& session);

/// Takes over what a header tells, and drops the tracks that it no longer counts.
void applyHeader(const HeaderLine& line, DAWSessionSnapshot& session);

/// Makes `track` what the line tells; whether it is solo or armed no line tells, so that comes from `before`,
/// which may be null. Strings are written into those that are there, without allocating when they fit.
void readTrack(const TrackLine& line, const DAWTrackState* before, DAWTrackState& track);
/// The track that is no master and has this index; null when there is none.
const DAWTrackState* findAudioTrack(const DAWSessionSnapshot& session, std::int64_t index);
/// Replaces the track with the same index that is no master, or adds one in its place.
void putTrack(const DAWTrackState& track, DAWSessionSnapshot& session);

}  // namespace orbinex
