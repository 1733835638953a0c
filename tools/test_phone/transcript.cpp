#include "test_phone/transcript.h"

#include <variant>

#include "base/numbers.h"
#include "base/text.h"
#include "test_phone/meter_picture.h"

namespace orbinex::test_phone {

namespace {

std::string quotedText(std::string_view text) {
    return "\"" + printable(text) + "\"";
}

std::string decibels(double value) {
    return formatFixed(value, 1) + " dB";
}

/// A word for a state that holds.
std::string_view word(bool holds, std::string_view text) {
    return holds ? text : std::string_view();
}

std::string text(const ControlMessage::Hello& hello) {
    return "hello " + std::to_string(hello.protocolVersion) + " " + quotedText(hello.macName);
}

std::string text(const ControlMessage::ActiveApp& app) {
    return "active-app " + printable(app.bundleID);
}

std::string text(const SessionTelemetry& telemetry) {
    return "telemetry " + printable(telemetry.timecode) + " " + formatFixed(telemetry.fps, 3) + " fps " +
           printable(telemetry.playbackSpeed) + (telemetry.isPlaying ? " playing " : " stopped ") +
           quotedText(telemetry.appVersion) + " timeline " + quotedText(telemetry.timelineName) + " page " +
           quotedText(telemetry.pageName);
}

std::string text(const DAWHeader& header) {
    std::string result = "header " + printable(header.dawID) + " project " + quotedText(header.projectName) +
                         " master " + decibels(header.masterVolumeDB);
    result += word(header.masterMuted, " muted");
    result += word(header.midiSurfaceOnline, " midi-surface");
    result += word(header.clipsLinked, " clips-linked");
    return result + " clip " + quotedText(header.clipName) + " node " +
           std::to_string(header.selectedNodeIndex) + "/" + std::to_string(header.nodeCount) +
           (header.isNodeEnabled ? " enabled" : " disabled");
}

std::string text(const DAWTrackState& track) {
    std::string result = "track " + std::to_string(track.index) + "/" + std::to_string(track.totalTracks) +
                         " " + printable(track.badge) + " " + quotedText(track.name) + " " +
                         printable(track.format) + " " + decibels(track.volumeDB) + " pan " +
                         formatFixed(track.pan, 0);
    result += word(track.isMuted, " muted");
    result += word(track.isSolo, " solo");
    result += word(track.isArmed, " armed");
    result += word(track.isLocked, " locked");
    result += word(track.isMaster, " master");
    if (track.voiceIsolationEnabled) {
        result += " voice-isolation " + std::to_string(track.voiceIsolationAmount) + "%";
    }
    if (track.dialogueLevelerEnabled) {
        result += " dialogue-leveler " + decibels(track.dialogueLevelerGainDB);
    }
    return result + " by " + quotedText(rawValue(track.controlMode)) +
           (track.hasActiveClip ? " clip " : " inactive clip ") + quotedText(track.clipName) + " " +
           printable(track.clipUID);
}

std::string text(const DAWCommand& command) {
    return "command " + printable(command.encode());
}

std::string text(const DAWMeterPacket& meters) {
    return meterPicture(meters);
}

std::string text(const ControlMessage::DisconnectRequest&) {
    return "disconnect-request";
}

std::string text(const ControlMessage::Goodbye&) {
    return "goodbye";
}

}  // namespace

std::string printable(std::string_view value) {
    const auto repaired = repairUTF8({reinterpret_cast<const std::uint8_t*>(value.data()), value.size()});
    std::string_view rest = repaired;
    std::string result;
    while (const auto scalar = firstScalar(rest)) {
        std::size_t length = 1;
        while (length < rest.size() && (static_cast<unsigned char>(rest[length]) & 0xC0) == 0x80) ++length;
        // The format character that joins emoji is harmless; those that turn the direction of text are not.
        const bool isHarmful = isControlCharacter(*scalar) && *scalar != U'\u200D';
        result += isHarmful ? "\uFFFD" : rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return result;
}

std::string hex(ByteView bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const auto byte : bytes) {
        result += digits[byte >> 4];
        result += digits[byte & 0x0F];
    }
    return result;
}

std::string describe(const ControlMessage& message) {
    return std::visit([](const auto& value) { return text(value); }, message.value);
}

std::string describeWritten(ByteView value) {
    const auto message = ControlMessage::decode(value);
    return message ? describe(*message) : "undecodable " + hex(value);
}

}  // namespace orbinex::test_phone
