// The surface on a real JACK server, with a workstation in another process.

#include "editor_bridge/midi/system_midi_endpoints.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "editor_bridge/bridge_world.h"
#include "editor_bridge/midi/jack_connection.h"
#include "editor_bridge/midi_surface_names.h"
#include "midi_workstation/hex_bytes.h"
#include "support/allocation_counter.h"
#include "support/comes_to_pass.h"
#include "support/private_jack_server.h"
#include "support/publish_in_test.h"
#include "support/workstation_process.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr std::size_t flood = 100'000;

/// 14 bits of a number in a fader's position, its higher bits in the fader's number.
MIDIMessage numbered(std::size_t number) {
    return {static_cast<std::uint8_t>(0xE0 + (number >> 14U)), static_cast<std::uint8_t>(number & 0x7FU),
            static_cast<std::uint8_t>((number >> 7U) & 0x7FU)};
}

class Surface : public ::testing::Test {
  protected:
    ~Surface() override { world.daemon.reset(); }

    template <class Condition>
    bool comesToPass(Condition condition) {
        return test::comesToPass(world.queue, condition);
    }
    bool isConnected(WorkstationProcess& workstation) {
        return comesToPass(
            [&] { return !workstation.lines().empty() && workstation.lines().back() == "connected"; });
    }
    /// What it has heard, when it has heard that many messages.
    Texts heard(WorkstationProcess& workstation, std::size_t count) {
        comesToPass([&] { return workstation.lines().size() > count; });
        auto lines = workstation.lines();
        lines.erase(lines.begin());
        return lines;
    }
    bool comesOnline() {
        return comesToPass([&] { return endpoints.isSourceOnline(); });
    }

    PrivateJackServer server;
    BridgeWorld world;
    SystemMIDIEndpoints endpoints{world.queue, {.systems = {JackConnection::open}, .retryDelay = 20ms}};
};

TEST_F(Surface, playsEveryCommandToAnotherProcess) {
    server.start();
    world.workspace.activate(logic);
    world.start(endpoints);
    ASSERT_TRUE(comesOnline());
    EXPECT_TRUE(world.session().midiSurfaceOnline);
    WorkstationProcess workstation;
    ASSERT_TRUE(isConnected(workstation));
    for (const auto* command :
         {"VOL|3|-96", "VOL|1|0", "VOL|12|12", "VOL|0|0", "PAN|2|-100", "PAN|8|100", "MUTE|2|1", "SOLO|1|0",
          "ARM|9|1", "VISO|5|1|65", "DLEV|5|1|0", "MUTE|0|1", "SYNC"})
        world.command(command);
    const Texts expected{"E2 00 00", "E0 6A 63", "E7 7F 7F", "E8 6A 63", "B1 0A 00", "B7 0A 7F", "90 11 7F",
                         "80 11 00", "90 08 7F", "80 08 00", "90 07 7F", "80 07 00", "B0 1C 52", "B0 1D 3F"};
    EXPECT_EQ(heard(workstation, expected.size()), expected);
}

TEST_F(Surface, followsTheFadersOfAnotherProcessAndNothingElse) {
    server.start();
    world.workspace.activate(logic);
    PublishInTest::edit(world.daemon->dawSnapshot, [](DAWSessionSnapshot& session) {
        for (std::int64_t index = 4; index <= 9; ++index) {
            session.tracks.push_back(session.tracks.front());
            session.tracks.back().index = index;
        }
    });
    const auto tracks = world.session().tracks;
    world.start(endpoints);
    PublishInTest::edit(world.daemon->dawSnapshot,
                        [&](DAWSessionSnapshot& session) { session.tracks = tracks; });
    ASSERT_TRUE(comesOnline());
    WorkstationProcess workstation;
    ASSERT_TRUE(isConnected(workstation));
    world.forget();
    // Everything but faders: buttons, controllers, other channels, clocks, long messages whole and in parts,
    // one that never ends, data without a status, faders that are cut short or hold bytes that are no data.
    workstation.play(
        "90 10 7F\n80 10 00\nB0 07 40\nC0 05\nD0 40\nE9 00 40\nEF 7F 7F\nF8\nFE\nFF\nF2 00 40\n"
        "F0 00 00 66 14 20 01 F7\nF0 E0 00 40 F7\nF0 7E 00\n00 40\n00 40 00 41\n11 22 F7\n"
        "E0\nE0 00\nE0 F8 00 40\nE0 00 FE 40\nF8 E0 00 40\nF7\n");
    // And faders, the last of them with what a running status would add.
    workstation.play(
        "E8 6A 63\nF8\nE0 6B 23\nE1 6B 23\nF0 7E 00\nE2 6B 23\nE3 6B 23\nFE\nE4 6B 23\nE5 6B 23\n"
        "E6 6B 23\nE7 7F 7F 00 00\n");
    ASSERT_TRUE(comesToPass([&] { return world.packets.size() >= 9; }));
    EXPECT_EQ(world.packetKinds(), "T0 T1 T2 T3 T4 T5 T6 T7 T8");
    for (const auto& track : world.session().tracks) {
        const double expected = track.isMaster ? 0 : track.index == 8 ? 12 : track.index == 9 ? 0 : -36;
        EXPECT_EQ(track.volumeDB, expected) << track.index;
    }
}

TEST_F(Surface, hearsAFloodInOrderWithoutTakingMemory) {
    server.start();
    struct Heard {
        std::atomic<std::size_t> count = 0;
        std::atomic<std::size_t> wrong = 0;
        std::atomic<std::size_t> allocations = 0;
        std::size_t before = 0;
    };
    // Shared with the endpoints, which outlive this function when it is left early.
    const auto heard = std::make_shared<Heard>();
    endpoints.onMessage = [heard](const MIDIMessage& message) {
        if (heard->count == 0) heard->before = allocationCount();
        if (message != numbered(heard->count)) ++heard->wrong;
        heard->allocations = allocationCount() - heard->before;
        ++heard->count;
    };
    endpoints.start();
    ASSERT_TRUE(comesOnline());
    WorkstationProcess workstation;
    ASSERT_TRUE(isConnected(workstation));
    std::string lines;
    for (std::size_t i = 0; i < flood; ++i) lines += hexText(numbered(i)) + "\n";
    workstation.play(lines);
    EXPECT_TRUE(comesToPass([&] { return heard->count >= flood; })) << heard->count;
    endpoints.stop();
    EXPECT_EQ(heard->count, flood);
    EXPECT_EQ(heard->wrong, 0U);
    EXPECT_EQ(heard->allocations, 0U);
}

TEST_F(Surface, isNotHeldUpByWhoeverHearsIt) {
    server.start();
    struct Hearer {
        std::atomic<bool> isHearing = false;
        std::promise<void> permission;
        std::future<void> permitted = permission.get_future();
    };
    const auto hearer = std::make_shared<Hearer>();
    endpoints.onMessage = [hearer](const MIDIMessage&) {
        hearer->isHearing = true;
        hearer->permitted.wait();
    };
    endpoints.start();
    ASSERT_TRUE(comesOnline());
    WorkstationProcess workstation;
    ASSERT_TRUE(isConnected(workstation));
    workstation.play("E0 00 40\n");
    EXPECT_TRUE(comesToPass([&] { return hearer->isHearing.load(); }));
    // The server's periods go on meanwhile, and with them what we play.
    endpoints.send({0x90, 0x10, 0x7F});
    EXPECT_EQ(heard(workstation, 1), Texts{"90 10 7F"});
    hearer->permission.set_value();
}

TEST_F(Surface, playsAFloodInOrderWithoutTakingMemory) {
    server.start();
    endpoints.start();
    ASSERT_TRUE(comesOnline());
    WorkstationProcess workstation;
    ASSERT_TRUE(isConnected(workstation));
    EXPECT_EQ(allocationsDuring([&] {
                  for (std::size_t i = 0; i < flood; ++i) endpoints.send(numbered(i));
              }),
              0U);
    const auto lines = heard(workstation, flood);
    ASSERT_EQ(lines.size(), flood);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < flood; ++i) wrong += lines[i] == hexText(numbered(i)) ? 0U : 1U;
    EXPECT_EQ(wrong, 0U);
}

TEST_F(Surface, comesWithTheServerGoesWithItAndComesBack) {
    world.workspace.activate(logic);
    world.start(endpoints);
    world.daemon->setBLEClientConnected(true);
    EXPECT_FALSE(world.session().midiSurfaceOnline);
    world.command("MUTE|1|1");
    for (const auto end : {&PrivateJackServer::stop, &PrivateJackServer::kill}) {
        world.forget();
        server.start();
        ASSERT_TRUE(comesToPass([&] { return world.session().midiSurfaceOnline; }));
        EXPECT_EQ(world.packetKinds(), "H") << "the iPhone is told";
        WorkstationProcess workstation;
        ASSERT_TRUE(isConnected(workstation));
        world.command("MUTE|1|1");
        EXPECT_EQ(heard(workstation, 2), (Texts{"90 10 7F", "80 10 00"}))
            << "and what was before is not made up for";
        workstation.play("E0 6B 23\n");
        EXPECT_TRUE(comesToPass([&] { return world.session().tracks[0].volumeDB == -36; }));
        world.command("VOL|1|0");
        world.forget();
        (server.*end)();
        ASSERT_TRUE(comesToPass([&] { return !world.session().midiSurfaceOnline; }));
        EXPECT_EQ(world.packetKinds(), "H");
        world.command("MUTE|1|1");
    }
}

TEST_F(Surface, isNumberedBehindOthersOfItsNameAndKeepsThePortsNames) {
    server.start();
    const std::string name = MIDISurfaceNames::client;
    // It is there when it is connected with itself.
    WorkstationProcess stranger({"--name", name, "--from", name + ":out", "--to", name + ":in"});
    ASSERT_TRUE(isConnected(stranger));
    endpoints.start();
    ASSERT_TRUE(comesOnline());
    SystemMIDIEndpoints another{world.queue, {.systems = {JackConnection::open}, .retryDelay = 20ms}};
    another.start();
    ASSERT_TRUE(comesToPass([&] { return another.isSourceOnline(); })) << "a second of ours";
    const auto ports = [&](const char* number) {
        const std::string client = name + number + ":";
        return Texts{"--from", client + MIDISurfaceNames::source, "--to",
                     client + MIDISurfaceNames::destination};
    };
    WorkstationProcess listener(ports("-01"));
    WorkstationProcess otherListener(ports("-02"));
    ASSERT_TRUE(isConnected(listener));
    ASSERT_TRUE(isConnected(otherListener));
    endpoints.send({0x90, 1, 1});
    another.send({0x90, 2, 2});
    EXPECT_EQ(heard(listener, 1), Texts{"90 01 01"});
    EXPECT_EQ(heard(otherListener, 1), Texts{"90 02 02"});
    EXPECT_EQ(stranger.lines(), Texts{"connected"});
}

TEST_F(Surface, endsAlthoughTheServerDoesNotAnswer) {
    server.start();
    world.start(endpoints);
    ASSERT_TRUE(comesOnline());
    server.suspend();
    for (std::size_t i = 0; i < 2 * flood; ++i) endpoints.send(numbered(i % flood));
    world.daemon.reset();
    EXPECT_FALSE(endpoints.isSourceOnline());
    server.kill();
}

}  // namespace
}  // namespace orbinex::test
