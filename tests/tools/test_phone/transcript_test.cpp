#include "test_phone/transcript.h"

#include <gtest/gtest.h>

#include "protocol/session_encoding.h"
#include "test_phone/meter_picture.h"

namespace orbinex::test_phone {
namespace {

TEST(PhoneTranscript, tellsEverythingThatAMessageHolds) {
    auto session = DAWSessionSnapshot::placeholder();
    session.dawID = "org.example.editor";
    session.projectName = "Film";
    session.masterMuted = true;
    DAWTrackState track;
    track.index = 2;
    track.totalTracks = 4;
    track.badge = "A2";
    track.name = "Music";
    track.clipName = "Song";
    track.clipUID = "u1";
    track.format = "STEREO";
    track.volumeDB = -6.5;
    track.isSolo = true;
    track.voiceIsolationEnabled = true;
    track.voiceIsolationAmount = 40;
    track.hasActiveClip = true;
    track.controlMode = DAWControlMode::liveIPC;
    const struct {
        Bytes written;
        const char* line;
    } rows[] = {
        {encodeHello("My \"PC\""), "hello 2 \"My \"PC\"\""},
        {encodeActiveApp("org.example.editor"), "active-app org.example.editor"},
        {encodeTelemetry({"01:02:03:04", 23.976, "RESOLVE", "Cut 1", "EDIT", "1X", true}),
         "telemetry 01:02:03:04 23.976 fps 1X playing \"RESOLVE\" timeline \"Cut 1\" page \"EDIT\""},
        {encodeTrack(track),
         "track 2/4 A2 \"Music\" STEREO -6.5 dB pan 0 solo voice-isolation 40% by \"LIVE IPC\" clip \"Song\" "
         "u1"},
        {encodeGoodbye(), "goodbye"},
        {{0x99, 0xAB}, "undecodable 99ab"},
        {{}, "undecodable "},
    };
    for (const auto& row : rows) EXPECT_EQ(describeWritten(row.written), row.line);

    const auto header = describeWritten(encodeHeader(session));
    EXPECT_TRUE(header.starts_with("header org.example.editor project \"Film\" master ")) << header;
    EXPECT_NE(header.find(" muted"), std::string::npos) << header;
}

TEST(PhoneTranscript, letsNothingMoveTheCursor) {
    EXPECT_EQ(printable("a\nb\x1B[2Jc\x7F"), "a\uFFFDb\uFFFD[2Jc\uFFFD");
    EXPECT_EQ(printable("\u202Eabc \u0085"), "\uFFFDabc \uFFFD");
    EXPECT_EQ(printable("ä👩‍👧"), "ä👩‍👧");
    EXPECT_EQ(printable("\xC3"), "\uFFFD");
    EXPECT_EQ(describeWritten(encodeHello("x\nquit")), "hello 2 \"x\uFFFDquit\"");
}

TEST(MeterPicture, drawsBarsInEighths) {
    EXPECT_EQ(bar(0, 0, 4), "····");
    EXPECT_EQ(bar(1, 1, 4), "████");
    EXPECT_EQ(bar(0.5, 0.5, 4), "██│·");
    EXPECT_EQ(bar(0.25, 1, 4), "█··│");
    EXPECT_EQ(bar(0.28125, 0.3, 4), "█▏··");
    EXPECT_EQ(bar(-3, 7, 2), "·│");
    EXPECT_EQ(columns(Bytes{0, 1, 31, 32, 128, 255}), " ▁▁▂▅█");
}

TEST(MeterPicture, showsEveryTrackTheSpectrumAndTheHistory) {
    DAWMeterPacket meters;
    meters.sequence = 7;
    meters.selectedTrackIndex = 1;
    meters.channelMeters = {{0, TrackMeterStatus::activeSignal, 0, 0, 0, true},
                            {1, TrackMeterStatus::silence, -288, -288, -288, false},
                            {2, TrackMeterStatus::unavailable, -288, -288, -288, false}};
    meters.spectrumBands = {0, 255};
    EXPECT_EQ(meterPicture(meters),
              "meters 7  M ████████!  1*········ silence  2 ········ unavailable  spectrum  █");
    EXPECT_EQ(meterPicture({}), "meters 0");
}

}  // namespace
}  // namespace orbinex::test_phone
