#include "protocol/session_encoding.h"

#include <algorithm>

#include "protocol/message_type.h"
#include "protocol/text_record.h"

namespace orbinex {

namespace {

using OrbinexProtocol::MessageType;
using OrbinexProtocol::textMessage;

/// Stands for the absence of a clip.
constexpr std::string_view noClip = "Empty";

std::int64_t atLeastOne(std::int64_t value) {
    return std::max<std::int64_t>(1, value);
}

DAWHeader readHeader(const TextRecordReader& fields) {
    return {
        .dawID = std::string(fields.text(1)),
        .projectName = fields.text(2, "Timeline"),
        .masterVolumeDB = fields.decimal(3, 0),
        .masterMuted = fields.flag(4),
        .midiSurfaceOnline = fields.flag(5),
        .clipsLinked = fields.flag(6),
        .clipName = fields.text(7, "Clip"),
        .nodeCount = atLeastOne(fields.integer(8, 4)),
        .selectedNodeIndex = atLeastOne(fields.integer(9, 1)),
        .isNodeEnabled = fields.flag(10),
    };
}

DAWTrackState readTrack(const TextRecordReader& fields) {
    return {
        .index = fields.integer(1, 1),
        .totalTracks = atLeastOne(fields.integer(2, 1)),
        .badge = fields.text(3, "A1"),
        .name = fields.text(4, "Audio 1"),
        .clipName = fields.text(5, noClip),
        .format = fields.text(6, "STEREO"),
        .volumeDB = fields.decimal(7, 0),
        .pan = fields.decimal(8, 0),
        .isMuted = fields.flag(9),
        .isSolo = fields.flag(10),
        .isArmed = fields.flag(11),
        .isLocked = fields.flag(12),
        .isMaster = fields.flag(13),
        .voiceIsolationEnabled = fields.flag(14),
        .voiceIsolationAmount = fields.integer(15, 0),
        .dialogueLevelerEnabled = fields.flag(16),
        .dialogueLevelerGainDB = fields.decimal(17, 0),
        .controlMode = controlModeFromWireCode(fields.text(18)),
        // The name as received: an empty one does not mean that there is no clip.
        .hasActiveClip = fields.count() > 19 ? fields.flag(19) : fields.text(5) != noClip,
        .clipUID = std::string(fields.text(20)),
    };
}

}  // namespace

Bytes encodeTelemetry(const SessionTelemetry& telemetry) {
    TextRecordWriter writer;
    writer.text(telemetry.timecode, 16)
        .fixed(telemetry.fps, 3)
        .text(telemetry.appVersion, 16)
        .text(telemetry.timelineName, 24)
        .text(telemetry.pageName, 12)
        .text(telemetry.playbackSpeed, 8)
        .flag(telemetry.isPlaying);
    return textMessage(MessageType::sessionTelemetry, writer.record());
}

Bytes encodeHeader(const DAWHeader& header) {
    TextRecordWriter writer;
    writer.text("H")
        .text(header.dawID, 42)
        .text(header.projectName, 24)
        .fixed(header.masterVolumeDB, 1)
        .flag(header.masterMuted)
        .flag(header.midiSurfaceOnline)
        .flag(header.clipsLinked)
        .text(header.clipName, 24)
        .integer(header.nodeCount)
        .integer(header.selectedNodeIndex)
        .flag(header.isNodeEnabled);
    return textMessage(MessageType::sessionRecord, writer.record());
}

Bytes encodeHeader(const DAWSessionSnapshot& session) {
    return encodeHeader(DAWHeader::of(session));
}

Bytes encodeTrack(const DAWTrackState& track) {
    TextRecordWriter writer;
    writer.text("T")
        .integer(track.index)
        .integer(track.totalTracks)
        .text(track.badge, 6)
        .text(track.name, 16)
        .text(track.clipName, 18)
        .text(track.format, 8)
        .fixed(track.volumeDB, 1)
        .fixed(track.pan, 0)
        .flag(track.isMuted)
        .flag(track.isSolo)
        .flag(track.isArmed)
        .flag(track.isLocked)
        .flag(track.isMaster)
        .flag(track.voiceIsolationEnabled)
        .integer(track.voiceIsolationAmount)
        .flag(track.dialogueLevelerEnabled)
        .fixed(track.dialogueLevelerGainDB, 1)
        .text(wireCode(track.controlMode))
        .flag(track.hasActiveClip)
        .text(track.clipUID, 12);
    return textMessage(MessageType::sessionRecord, writer.record());
}

std::optional<SessionTelemetry> decodeTelemetry(std::string_view text) {
    const TextRecordReader fields(text);
    if (fields.count() < 7) return std::nullopt;
    return SessionTelemetry{
        .timecode = fields.text(0, "01:00:00:00"),
        .fps = fields.decimal(1, 24),
        .appVersion = fields.text(2, "RESOLVE"),
        .timelineName = fields.text(3, "Timeline"),
        .pageName = fields.text(4, "EDIT"),
        .playbackSpeed = fields.text(5, "0X"),
        .isPlaying = fields.flag(6),
    };
}

std::optional<std::variant<DAWHeader, DAWTrackState>> decodeSessionRecord(std::string_view text) {
    const TextRecordReader fields(text);
    if (fields.text(0) == "H" && fields.count() >= 11) return readHeader(fields);
    if (fields.text(0) == "T" && fields.count() >= 19) return readTrack(fields);
    return std::nullopt;
}

}  // namespace orbinex
