#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "base/bytes.h"
#include "protocol/session_records.h"

namespace orbinex {

// The encoders give complete control messages: the type byte and a text record. Text fields lose every "|"
// and are cut to their first characters as a reader sees them, so that a record stays within one write.

/// timecode (16 characters) | fps, 3 decimals | appVersion (16) | timelineName (24) | pageName (12) |
/// playbackSpeed (8) | isPlaying
Bytes encodeTelemetry(const SessionTelemetry& telemetry);

/// "H" | dawID (42 characters) | projectName (24) | masterVolumeDB, 1 decimal | masterMuted |
/// midiSurfaceOnline | clipsLinked | clipName (24) | nodeCount | selectedNodeIndex | isNodeEnabled
Bytes encodeHeader(const DAWHeader& header);
Bytes encodeHeader(const DAWSessionSnapshot& session);

/// "T" | index | totalTracks | badge (6 characters) | name (16) | clipName (18) | format (8) | volumeDB, 1
/// decimal | pan, no decimals | isMuted | isSolo | isArmed | isLocked | isMaster | voiceIsolationEnabled |
/// voiceIsolationAmount | dialogueLevelerEnabled | dialogueLevelerGainDB, 1 decimal | controlMode's letter |
/// hasActiveClip | clipUID (12)
Bytes encodeTrack(const DAWTrackState& track);

/// Reads the text of a telemetry record. Nothing for fewer than 7 fields. Empty text fields become
/// 01:00:00:00, RESOLVE, Timeline, EDIT and 0X; an fps that does not parse becomes 24.
std::optional<SessionTelemetry> decodeTelemetry(std::string_view text);

/// Reads the text of a header ("H", at least 11 fields) or track record ("T", at least 19 fields); anything
/// else is nothing. Empty names become "Timeline" and "Clip" in a header and "A1", "Audio 1", "Empty" and
/// "STEREO" in a track; numbers that do not parse become 0, indices and track counts 1, the node count 4;
/// counts and the selected node are at least 1. Older peers send tracks of 19 fields, without the last two:
/// the clip is then active unless its name is "Empty".
std::optional<std::variant<DAWHeader, DAWTrackState>> decodeSessionRecord(std::string_view text);

}  // namespace orbinex
