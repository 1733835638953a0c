// The MIDI surface: what every command plays, what a workstation's faders do, and how the surface comes and
// goes.

#include "editor_bridge/midi_surface.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bridge_world.h"
#include "editor_bridge/fader_law.h"
#include "editor_bridge/fader_reports.h"
#include "support/allocation_counter.h"
#include "support/publish_in_test.h"

namespace orbinex {
namespace {

using ::testing::EndsWith;
using ::testing::IsEmpty;
using Messages = std::vector<MIDIMessage>;

TEST(MIDISurface, playsWhatACommandMeans) {
    const struct {
        const char* command;
        Messages messages;
    } rows[] = {
        {"VOL|3|-96", {{0xE2, 0x00, 0x00}}},
        {"VOL|3|0", {{0xE2, 0x6A, 0x63}}},
        {"VOL|3|12", {{0xE2, 0x7F, 0x7F}}},
        {"VOL|2|nan", {{0xE1, 0x00, 0x00}}},
        {"VOL|8|-36", {{0xE7, 0x6B, 0x23}}},
        {"VOL|12|0", {{0xE7, 0x6A, 0x63}}},
        {"VOL|0|0", {{0xE8, 0x6A, 0x63}}},
        {"VOL|-9223372036854775808|0", {{0xE0, 0x6A, 0x63}}},
        {"VOL|9223372036854775807|0", {{0xE7, 0x6A, 0x63}}},
        {"MUTE|9223372036854775807|1", {{0x90, 23, 0x7F}, {0x80, 23, 0}}},
        {"PAN|1|-100", {{0xB0, 0x0A, 0}}},
        {"PAN|2|0", {{0xB1, 0x0A, 63}}},
        {"PAN|8|100", {{0xB7, 0x0A, 127}}},
        {"PAN|9|99.9", {{0xB7, 0x0A, 126}}},
        {"PAN|1|-1e300", {{0xB0, 0x0A, 0}}},
        {"PAN|1|1e300", {{0xB0, 0x0A, 127}}},
        {"PAN|1|nan", {}},
        {"PAN|0|50", {}},
        {"PAN|-1|50", {}},
        {"MUTE|2|1", {{0x90, 0x11, 0x7F}, {0x80, 0x11, 0}}},
        {"MUTE|2|0", {{0x90, 0x11, 0x7F}, {0x80, 0x11, 0}}},
        {"MUTE|9|1", {{0x90, 23, 0x7F}, {0x80, 23, 0}}},
        {"MUTE|0|1", {}},
        {"SOLO|1|1", {{0x90, 8, 0x7F}, {0x80, 8, 0}}},
        {"SOLO|8|0", {{0x90, 15, 0x7F}, {0x80, 15, 0}}},
        {"SOLO|-1|1", {}},
        {"ARM|1|1", {{0x90, 0, 0x7F}, {0x80, 0, 0}}},
        {"ARM|70|1", {{0x90, 7, 0x7F}, {0x80, 7, 0}}},
        {"ARM|0|1", {}},
        {"VISO|5|1|65", {{0xB0, 0x1C, 82}}},
        {"VISO|0|0|100", {{0xB0, 0x1C, 127}}},
        {"VISO|1|1|-9223372036854775808", {{0xB0, 0x1C, 0}}},
        {"VISO|1|1|9223372036854775807", {{0xB0, 0x1C, 127}}},
        {"DLEV|5|1|0", {{0xB0, 0x1D, 63}}},
        {"DLEV|-2|0|12", {{0xB0, 0x1D, 127}}},
        {"DLEV|1|1|-12", {{0xB0, 0x1D, 0}}},
        {"DLEV|1|1|1e300", {{0xB0, 0x1D, 127}}},
        {"DLEV|1|1|-inf", {}},
        {"SYNC", {}},
    };
    for (const auto& editor : {resolve, logic}) {
        BridgeWorld world;
        world.workspace.activate(editor);
        for (const auto& row : rows) {
            world.forget();
            world.command(row.command);
            EXPECT_EQ(world.midi.sent, row.messages) << row.command << " for " << editor.localizedName;
        }
    }
}

TEST(MIDISurface, understandsFaderPositionsAndNothingElse) {
    EXPECT_EQ(faderFeedback({0xE8, 0x6A, 0x63}), (FaderFeedback{0, 0.0}));
    EXPECT_EQ(faderFeedback({0xE7, 0x6A, 0x63}), (FaderFeedback{8, 0.0}));
    const std::pair<MIDIMessage, double> levels[] = {
        {{0xE0, 0x00, 0x00}, -96},   {{0xE0, 0x7F, 0x7F}, 12},   {{0xE0, 0x00, 0x40}, -20.2},
        {{0xE0, 0x6B, 0x23}, -36.0}, {{0xE0, 0x40, 0x63}, -0.2}, {{0xE0, 0x7F, 0x63}, 0},
    };
    for (const auto& [message, dB] : levels) EXPECT_EQ(faderFeedback(message)->dB, dB) << int(message[2]);
    // Every status byte, with data, and with bytes that are no data.
    for (int status = 0; status < 256; ++status) {
        const auto first = static_cast<std::uint8_t>(status);
        const bool isFader = status >= 0xE0 && status <= 0xE8;
        EXPECT_EQ(faderFeedback({first, 0, 0x40}).has_value(), isFader) << status;
        EXPECT_FALSE(faderFeedback({first, 0xF8, 0x40})) << status;
        EXPECT_FALSE(faderFeedback({first, 0, 0x80})) << status;
    }
}

TEST(MIDISurface, hearsBackTheLevelThatItPlays) {
    for (int tenths = -960; tenths <= 120; ++tenths) {
        const double dB = tenths / 10.0;
        const auto back = faderFeedback(faderMessage(3, dB));
        ASSERT_TRUE(back);
        EXPECT_EQ(back->trackIndex, 4);
        // A position's step is far below a tenth; next to 0 dB faders snap in.
        EXPECT_EQ(back->dB, std::abs(tenths) < 2 ? 0 : dB);
    }
}

TEST(MIDISurface, movesTheSessionsFadersAndTellsTheIPhone) {
    BridgeWorld world;
    world.workspace.activate(logic);
    world.volume.position = 0.5;
    world.forget();
    world.feedback({0xE1, 0x6B, 0x23});
    EXPECT_EQ(world.session().tracks[1].volumeDB, -36);
    EXPECT_EQ(world.packetKinds(), "T2") << "also without a link";
    world.feedback({0xE8, 0x7F, 0x7F});
    EXPECT_EQ(world.session().masterVolumeDB, 12);
    EXPECT_EQ(world.session().tracks[3].volumeDB, 12);
    EXPECT_EQ(world.packetKinds(), "T2 T0");
    EXPECT_THAT(world.volume.writes, IsEmpty()) << "the computer's own volume stays";
    world.feedback({0xE7, 0x00, 0x00});
    world.feedback({0x90, 0x11, 0x7F});
    EXPECT_EQ(world.packetKinds(), "T2 T0") << "no such track, no fader";
    EXPECT_EQ(world.trackIndices(), (std::vector<std::int64_t>{1, 2, 3, 0}));
    EXPECT_THAT(world.midi.sent, IsEmpty()) << "what was heard is not played back";
    world.run(AppWatcherDaemon::supervisorInterval);
    EXPECT_EQ(world.session().masterVolumeDB, faderScalarToDB(0.5))
        << "which the master follows at the next look";
    EXPECT_EQ(world.session().tracks[3].volumeDB, faderScalarToDB(0.5));
    PublishInTest::edit(world.daemon->dawSnapshot, [](auto& session) { session.tracks.clear(); });
    world.forget();
    world.feedback({0xE8, 0x00, 0x00});
    EXPECT_EQ(world.session().masterVolumeDB, -96) << "also without a track of its own";
    EXPECT_EQ(world.packetKinds(), "");
}

TEST(MIDISurface, leavesResolvesTracksToItsScript) {
    BridgeWorld world;
    world.beginSession();
    const auto before = world.session();
    world.feedback({0xE1, 0x00, 0x00});
    world.feedback({0xE8, 0x00, 0x00});
    EXPECT_EQ(world.session(), before);
    EXPECT_EQ(world.packetKinds(), "");
}

TEST(MIDISurface, takesEveryReportInOrderAndOfAFloodTheLastOnes) {
    BridgeWorld world;
    world.workspace.activate(logic);
    world.forget();
    for (const int channel : {0, 0, 8, 2, 0})
        world.midi.inject({static_cast<std::uint8_t>(0xE0 + channel), 0, 0x10});
    world.queue.runDue();
    EXPECT_EQ(world.packetKinds(), "T1 T1 T0 T3 T1");

    world.forget();
    const auto allocations = test::allocationsDuring([&] {
        for (int i = 0; i < 100'000; ++i) {
            const auto low = static_cast<std::uint8_t>(i & 0x7F);
            world.midi.inject({static_cast<std::uint8_t>(0xE0 + i % 9), low, 0x10});
        }
    });
    EXPECT_LT(allocations, 10U) << "one job, however much is said";
    world.midi.inject({0xE2, 0x7F, 0x7F});
    world.midi.inject({0xE0, 0x6A, 0x63});
    world.queue.runDue();
    EXPECT_LE(world.packets.size(), FaderReports::capacity);
    EXPECT_THAT(world.packetKinds(), EndsWith(" T3 T1"));
    EXPECT_EQ(world.session().tracks[2].volumeDB, 12);
    EXPECT_EQ(world.session().tracks[0].volumeDB, 0);
    world.forget();
    world.feedback({0xE0, 0x00, 0x00});
    EXPECT_EQ(world.packetKinds(), "T1") << "and the next is heard again";
}

TEST(FaderReports, keepTheLastWordOfEachFaderWhenThereIsNoMoreRoom) {
    FaderReports reports;
    EXPECT_TRUE(reports.put({.trackIndex = 7, .dB = -1}));
    EXPECT_FALSE(reports.put({.trackIndex = 3, .dB = -2}));
    for (std::size_t i = 2; i < FaderReports::capacity; ++i)
        reports.put({.trackIndex = 5, .dB = static_cast<double>(i)});
    reports.put({.trackIndex = 3, .dB = -4});
    std::vector<FaderFeedback> taken;
    reports.take([&](const FaderFeedback& report) { taken.push_back(report); });
    EXPECT_EQ(taken,
              (std::vector<FaderFeedback>{{7, -1}, {3, -2}, {5, FaderReports::capacity - 1.0}, {3, -4}}));
    EXPECT_TRUE(reports.put({.trackIndex = 5, .dB = 0}));
}

TEST(MIDISurface, tellsWhetherItIsThereWheneverThatChanges) {
    BridgeWorld world;
    world.beginSession();
    world.midi.setSystem(false);
    EXPECT_FALSE(world.session().midiSurfaceOnline);
    EXPECT_EQ(world.packetKinds(), "H");
    EXPECT_FALSE(std::get<DAWHeader>(world.packets.back().value).midiSurfaceOnline);
    world.command("MUTE|1|1");
    EXPECT_TRUE(world.session().tracks[0].isMuted) << "commands go on without it";
    EXPECT_EQ(world.commandFile.lines, std::vector<std::string>{"MUTE|1|0"});
    world.forget();
    world.midi.setSystem(true);
    EXPECT_TRUE(world.session().midiSurfaceOnline);
    EXPECT_EQ(world.packetKinds(), "H");
    EXPECT_THAT(world.midi.sent, IsEmpty()) << "nothing is made up for";
    world.daemon->setBLEClientConnected(false);
    world.forget();
    world.midi.setSystem(false);
    EXPECT_EQ(world.packetKinds(), "") << "nothing to nobody";
}

TEST(MIDISurface, endsWithTheBridgeAndForgetsWhatWasOnItsWay) {
    BridgeWorld world;
    world.workspace.activate(logic);
    world.midi.inject({0xE1, 0x00, 0x00});
    world.daemon.reset();
    world.queue.runDue();
    EXPECT_FALSE(world.midi.isSourceOnline());
}

}  // namespace
}  // namespace orbinex
