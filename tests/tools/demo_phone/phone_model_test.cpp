// What the phone shows of what it is told, and what its mixer sends.

#include "demo/phone/phone_model.h"

#include <QCoreApplication>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "protocol/session_encoding.h"

namespace orbinex::demo {
namespace {

DAWTrackState trackNamed(std::int64_t index, std::int64_t total, const char* name) {
    DAWTrackState track;
    track.index = index;
    track.totalTracks = total;
    track.name = name;
    track.isMaster = index == 0;
    return track;
}

/// The phone; what it sends is noted.
struct Phone {
    std::vector<std::string> commands;
    std::vector<DecodedPacket> inputs;
    PhoneModel model{{[this](const DecodedPacket& packet) { inputs.push_back(packet); },
                      [this](const DAWCommand& command) { commands.push_back(command.encode()); }}};

    void tell(ControlMessage::Value value) { model.receive({std::move(value)}); }
    std::string value(TrackListModel* strips, int row, const char* role) {
        const int number = strips->roleNames().key(role);
        return strips->data(strips->index(row), number).toString().toStdString();
    }
    std::string names() {
        std::string all;
        for (int row = 0; row < model.tracks()->count(); ++row)
            all += value(model.tracks(), row, "name") + " ";
        return all;
    }
};

TEST(PhoneModel, keepsTheTracksInOrderAndThoseThatThereAre) {
    Phone phone;
    phone.tell(trackNamed(3, 3, "Camera"));
    phone.tell(trackNamed(1, 3, "Dialogue"));
    phone.tell(trackNamed(0, 3, "Out"));
    phone.tell(trackNamed(2, 3, "Music"));
    EXPECT_EQ(phone.names(), "Dialogue Music Camera ");
    EXPECT_EQ(phone.value(phone.model.master(), 0, "name"), "Out");
    phone.tell(trackNamed(1, 2, "Voice"));
    EXPECT_EQ(phone.names(), "Voice Music ");
    for (const std::int64_t index : {std::int64_t{-5}, PhoneSession::mostTracks + 1, INT64_MAX})
        phone.tell(trackNamed(index, INT64_MAX, "Far"));
    EXPECT_EQ(phone.names(), "Voice Music ");
}

TEST(PhoneModel, showsLevelsOfTheTracksThatTheMetersTellOf) {
    Phone phone;
    phone.tell(trackNamed(1, 2, "Dialogue"));
    phone.tell(trackNamed(2, 2, "Music"));
    DAWMeterPacket meters;
    meters.selectedTrackIndex = 2;
    meters.channelMeters = {{2, TrackMeterStatus::activeSignal, 0, -12, 0, true}};
    meters.spectrumBands = {0, 255};
    phone.tell(meters);
    EXPECT_EQ(phone.value(phone.model.tracks(), 0, "level"), "0");
    EXPECT_EQ(phone.value(phone.model.tracks(), 1, "level"), "1");
    EXPECT_EQ(phone.value(phone.model.tracks(), 1, "isClipping"), "true");
    EXPECT_EQ(phone.model.selectedName(), "Music");
    EXPECT_EQ(phone.model.spectrum(), (QVariantList{0.0, 1.0}));
}

TEST(PhoneModel, asksForWhatItsMixerIsMovedToAndShowsIt) {
    Phone phone;
    phone.tell(trackNamed(1, 1, "Dialogue"));
    phone.model.moveFader(1, 1.0);
    phone.model.moveFader(1, 1.0);
    phone.model.moveFader(7, 0.5);
    phone.model.setMuted(1, true);
    phone.model.setSolo(1, false);
    EXPECT_EQ(phone.commands, (std::vector<std::string>{"VOL|1|12", "MUTE|1|1", "SOLO|1|0"}));
    EXPECT_EQ(phone.value(phone.model.tracks(), 0, "volume"), "12.0");
    phone.model.moveFader(1, 0);
    EXPECT_EQ(phone.value(phone.model.tracks(), 0, "volume"), "–∞");
}

TEST(PhoneModel, forgetsTheSessionWithTheLink) {
    Phone phone;
    phone.model.setLink(PhoneSession::Link::connected);
    phone.tell(ControlMessage::Hello{2, "Desk"});
    phone.tell(trackNamed(1, 1, "Dialogue"));
    EXPECT_EQ(phone.model.computer(), "Desk");
    phone.model.setLink(PhoneSession::Link::waiting);
    EXPECT_EQ(phone.model.computer(), "");
    EXPECT_EQ(phone.model.tracks()->count(), 0);
    EXPECT_EQ(phone.model.linkWord(), "Ready to connect");
}

TEST(PhoneModel, playsWhatStandsAndPausesWhatPlays) {
    Phone phone;
    const auto strikesAtLast = [&] {
        return std::get<DecodedPacket::KeyStroke>(phone.inputs.back().value).keycode;
    };
    phone.model.playOrPause();
    EXPECT_EQ(strikesAtLast(), 37);
    SessionTelemetry telemetry;
    telemetry.isPlaying = true;
    phone.tell(telemetry);
    phone.model.playOrPause();
    EXPECT_EQ(strikesAtLast(), 40);
}

}  // namespace
}  // namespace orbinex::demo
