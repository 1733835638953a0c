#include "protocol/session_encoding.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "protocol/control_message.h"
#include "support/byte_transcript.h"
#include "support/comma_locale.h"

using namespace orbinex;
using orbinex::test::textAfterType;
using orbinex::test::typed;

namespace {

template <class Record>
std::optional<Record> received(std::uint8_t type, std::string_view text) {
    const auto message = ControlMessage::decode(typed(type, text));
    if (!message) return std::nullopt;
    const auto* const record = std::get_if<Record>(&message->value);
    return record ? std::optional(*record) : std::nullopt;
}

/// A record whose every field differs from its default and from its neighbours.
DAWTrackState distinctTrack() {
    return {.index = 2,
            .totalTracks = 5,
            .badge = "A2",
            .name = "Dialogue",
            .clipName = "Take 7",
            .format = "MONO",
            .volumeDB = -6.25,
            .pan = -37.5,
            .isMuted = true,
            .isSolo = false,
            .isArmed = true,
            .isLocked = true,
            .isMaster = false,
            .voiceIsolationEnabled = true,
            .voiceIsolationAmount = 65,
            .dialogueLevelerEnabled = true,
            .dialogueLevelerGainDB = 3.5,
            .controlMode = DAWControlMode::verifiedShortcut,
            .hasActiveClip = true,
            .clipUID = "uid-9"};
}

TEST(TelemetryRecord, isWrittenInOrderAndReadBack) {
    const SessionTelemetry telemetry{"01:02:03:04", 23.976, "RESOLVE", "Cut 3", "COLOR", "-1X", true};
    const Bytes message = encodeTelemetry(telemetry);
    EXPECT_EQ(message, typed(0x14, "01:02:03:04|23.976|RESOLVE|Cut 3|COLOR|-1X|1"));
    EXPECT_EQ(ControlMessage::decode(message), ControlMessage{telemetry});
    EXPECT_EQ(ControlMessage{telemetry}.encode(), message);
}

TEST(TelemetryRecord, takesDefaultsForEmptyFields) {
    EXPECT_EQ(received<SessionTelemetry>(0x14, "||||||"),
              (SessionTelemetry{"01:00:00:00", 24, "RESOLVE", "Timeline", "EDIT", "0X", false}));
    EXPECT_EQ(received<SessionTelemetry>(0x14, "a|25 fps|b|c|d|e|yes|more"),
              (SessionTelemetry{"a", 24, "b", "c", "d", "e", false}));
    EXPECT_FALSE(received<SessionTelemetry>(0x14, "|||||"));
}

TEST(TelemetryRecord, isBoundedFieldByField) {
    const std::string longText(100, 'x');
    const Bytes message = encodeTelemetry({longText, 24, longText, longText, longText, longText, false});
    const auto x = [](std::size_t count) { return std::string(count, 'x'); };
    EXPECT_EQ(textAfterType(message),
              x(16) + "|24.000|" + x(16) + "|" + x(24) + "|" + x(12) + "|" + x(8) + "|0");
}

TEST(HeaderRecord, isWrittenInOrderAndReadBack) {
    DAWSessionSnapshot session = DAWSessionSnapshot::placeholder();
    session.masterVolumeDB = -3.04;
    session.masterMuted = true;
    session.colorState.selectedNodeIndex = 2;
    const Bytes message = encodeHeader(session);
    EXPECT_EQ(message,
              typed(0x15, "H|com.blackmagic-design.DaVinciResolve|Timeline 1|-3.0|1|1|1|Active Clip|4|2|1"));

    const auto header = received<DAWHeader>(0x15, textAfterType(message));
    ASSERT_TRUE(header);
    EXPECT_EQ(*header, (DAWHeader{"com.blackmagic-design.DaVinciResolve", "Timeline 1", -3.0, true, true,
                                  true, "Active Clip", 4, 2, true}));
    EXPECT_EQ(ControlMessage{*header}.encode(), message);
}

TEST(HeaderRecord, takesDefaultsAndKeepsCountsAtOneOrMore) {
    EXPECT_EQ(received<DAWHeader>(0x15, "H||||||||||"),
              (DAWHeader{"", "Timeline", 0, false, false, false, "Clip", 4, 1, false}));
    EXPECT_EQ(received<DAWHeader>(0x15, "H|a|b|x|1|0|1|c|0|-9223372036854775808|1|more"),
              (DAWHeader{"a", "b", 0, true, false, true, "c", 1, 1, true}));
    EXPECT_FALSE(received<DAWHeader>(0x15, "H|||||||||"));
    EXPECT_FALSE(received<DAWHeader>(0x15, "h||||||||||"));
}

TEST(TrackRecord, isWrittenInOrderAndReadBack) {
    DAWTrackState track = distinctTrack();
    const Bytes message = encodeTrack(track);
    EXPECT_EQ(message, typed(0x15, "T|2|5|A2|Dialogue|Take 7|MONO|-6.2|-38|1|0|1|1|0|1|65|1|3.5|S|1|uid-9"));
    track.volumeDB = -6.2;
    track.pan = -38;
    EXPECT_EQ(ControlMessage::decode(message), ControlMessage{track});
    EXPECT_EQ(ControlMessage{track}.encode(), message);
}

TEST(TrackRecord, distinguishesEachFlag) {
    const std::pair<bool DAWTrackState::*, std::size_t> flags[] = {
        {&DAWTrackState::isMuted, 9},
        {&DAWTrackState::isSolo, 10},
        {&DAWTrackState::isArmed, 11},
        {&DAWTrackState::isLocked, 12},
        {&DAWTrackState::isMaster, 13},
        {&DAWTrackState::voiceIsolationEnabled, 14},
        {&DAWTrackState::dialogueLevelerEnabled, 16},
        {&DAWTrackState::hasActiveClip, 19},
    };
    for (const auto& [flag, position] : flags) {
        std::string fields;
        for (std::size_t i = 1; i <= 20; ++i) fields += i == position ? "|1" : "|0";
        const auto track = received<DAWTrackState>(0x15, "T" + fields);
        ASSERT_TRUE(track);
        for (const auto& [other, where] : flags) EXPECT_EQ((*track).*other, where == position) << where;
    }
}

TEST(TrackRecord, takesDefaultsForEmptyFields) {
    DAWTrackState expected;
    expected.badge = "A1";
    expected.name = "Audio 1";
    expected.clipName = "Empty";
    expected.format = "STEREO";
    EXPECT_EQ(received<DAWTrackState>(0x15, "T||||||||||||||||||||"), expected);
    expected.index = 0;
    EXPECT_EQ(received<DAWTrackState>(0x15, "T|0|-7|||||x|y|2|2|2|2|2|2|z|2|w|i||"), expected);
    EXPECT_FALSE(received<DAWTrackState>(0x15, "T|||||||||||||||||"));
}

TEST(TrackRecord, tellsAnActiveClipByItsNameWhereThePeerSendsNoFlag) {
    struct Case {
        const char* clipName;
        const char* tail;
        bool hasActiveClip;
        const char* clipUID;
    };
    const Case cases[] = {
        {"Take", "", true, ""},      {"", "", true, ""},
        {"Empty", "", false, ""},    {"Empty", "|1", true, ""},
        {"Take", "|0", false, ""},   {"Take", "|", false, ""},
        {"Take", "|1|u", true, "u"}, {"Take", "|0|u|more", false, "u"},
    };
    for (const auto& [clipName, tail, hasActiveClip, clipUID] : cases) {
        const auto track = received<DAWTrackState>(
            0x15, std::string("T|1|1|A1|N|") + clipName + "|STEREO|0|0|0|0|0|0|0|0|0|0|0|I" + tail);
        ASSERT_TRUE(track);
        EXPECT_EQ(track->hasActiveClip, hasActiveClip) << clipName << tail;
        EXPECT_EQ(track->clipUID, clipUID) << clipName << tail;
        EXPECT_EQ(track->clipName, *clipName == 0 ? "Empty" : clipName);
    }
}

TEST(TrackRecord, cutsByCharactersAfterTheSeparatorsAreGone) {
    DAWTrackState track = distinctTrack();
    track.name = "|ab|cdefghijklmnopqrst|";
    track.badge = "|||";
    track.clipName.clear();
    std::string accents;
    for (int i = 0; i < 18; ++i) accents += "e\u0301";
    track.clipName = accents + "x";
    track.format = std::string("\U0001F468\u200D\U0001F469\u200D\U0001F467") + "STEREO 5.1";
    track.clipUID = "0123456789abcdef";
    const auto text = textAfterType(encodeTrack(track));
    EXPECT_TRUE(text.starts_with("T|2|5||abcdefghijklmnop|" + accents +
                                 "|\U0001F468\u200D\U0001F469\u200D\U0001F467STEREO |"))
        << text;
    EXPECT_TRUE(text.ends_with("|0123456789ab")) << text;
}

TEST(SessionRecords, readBackWhateverNumberTheyAreGiven) {
    for (const double value :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN(), 1.7e308, -5e-324}) {
        DAWTrackState track = distinctTrack();
        track.volumeDB = track.pan = track.dialogueLevelerGainDB = value;
        track.index = track.voiceIsolationAmount = INT64_MIN;
        const auto read = received<DAWTrackState>(0x15, textAfterType(encodeTrack(track)));
        ASSERT_TRUE(read);
        EXPECT_EQ(encodeTrack(*read), encodeTrack(track));
        EXPECT_EQ(read->index, INT64_MIN);
        EXPECT_EQ(std::isfinite(read->volumeDB), std::isfinite(value));
    }
}

TEST(SessionRecords, areTheSameWhereTheUserWritesACommaForThePoint) {
    const test::CommaLocale german;
    EXPECT_EQ(textAfterType(encodeTelemetry({"t", 1234.5, "a", "b", "c", "d", true})),
              "t|1234.500|a|b|c|d|1");
    EXPECT_EQ(received<SessionTelemetry>(0x14, "t|23.976|a|b|c|d|1")->fps, 23.976);
}

TEST(ControlMode, hasANameAndALetter) {
    const std::tuple<DAWControlMode, std::string_view, std::string_view> modes[] = {
        {DAWControlMode::liveIPC, "LIVE IPC", "I"},
        {DAWControlMode::midiControlSurface, "MIDI SURFACE", "M"},
        {DAWControlMode::verifiedShortcut, "SHORTCUT", "S"},
        {DAWControlMode::unsupported, "UNAVAILABLE", "U"},
    };
    for (const auto& [mode, name, letter] : modes) {
        EXPECT_EQ(rawValue(mode), name);
        EXPECT_EQ(controlModeFromRawValue(name), mode);
        EXPECT_EQ(wireCode(mode), letter);
        EXPECT_EQ(controlModeFromWireCode(letter), mode);
    }
    EXPECT_EQ(controlModeFromRawValue("live ipc"), std::nullopt);
    EXPECT_EQ(controlModeFromWireCode("II"), DAWControlMode::unsupported);
    EXPECT_EQ(controlModeFromWireCode(""), DAWControlMode::unsupported);
}

TEST(PlaceholderSession, sendsThreeTracksAndTheMaster) {
    const auto session = DAWSessionSnapshot::placeholder();
    ASSERT_EQ(session.tracks.size(), 4U);
    EXPECT_EQ(textAfterType(encodeTrack(session.tracks[1])),
              "T|2|3|A2|Audio 2|Track 2|STEREO|0.0|0|0|0|0|0|0|0|50|0|0.0|I|1|");
    EXPECT_EQ(textAfterType(encodeTrack(session.tracks[3])),
              "T|0|3|M1|MASTER|Main Out|2.0 OUT|0.0|0|0|0|0|0|1|0|0|0|0.0|I|1|MASTER");
    EXPECT_EQ(textAfterType(encodeHeader(session)),
              "H|com.blackmagic-design.DaVinciResolve|Timeline 1|0.0|0|1|1|Active Clip|4|1|1");
}

}  // namespace
