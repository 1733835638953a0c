// The MIDI surface on the kernel's sequencer, as programs of others see it.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "editor_bridge/midi/alsa_connection.h"
#include "editor_bridge/midi/system_midi_endpoints.h"
#include "editor_bridge/midi_surface_names.h"
#include "sim/virtual_main_queue.h"
#include "vm/link_scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

class MIDIScenario : public LinkScenario {
  protected:
    /// The number of the first port of this name, as other programs take it; empty when there is none.
    std::string addressOf(const std::string& port) {
        Process& list = start("aconnect", {"aconnect", "-l"});
        EXPECT_EQ(list.waitForEnd(limit), 0);
        std::string client;
        std::smatch match;
        for (const auto& line : list.lines()) {
            if (std::regex_search(line, match, std::regex("^client ([0-9]+): "))) client = match[1];
            if (std::regex_search(line, match, std::regex("^ +([0-9]+) '" + port + " *'")))
                return client + ":" + match.str(1);
        }
        return {};
    }
    /// Prints what the surface plays.
    Process& listen() {
        Process& workstation =
            start("aseqdump", {"stdbuf", "-oL", "aseqdump", "-p", addressOf(MIDISurfaceNames::source)});
        EXPECT_TRUE(workstation.waitFor("Waiting for data", limit));
        return workstation;
    }
    /// Plays the events of a file's track to the surface: before each a byte of time, which is zero.
    void play(const std::string& events) {
        constexpr std::string_view header("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0", 21);
        constexpr std::string_view end("\0\xFF\x2F\0", 4);
        const auto size = static_cast<char>(events.size() + end.size());
        const std::string file = machine->log("faders.mid");
        std::ofstream(file, std::ios::binary) << header << size << events << end;
        Process& player = start(
            "aplaymidi", {"aplaymidi", "-d", "0", "-p", addressOf(MIDISurfaceNames::destination), file});
        EXPECT_EQ(player.waitForEnd(limit), 0);
    }
};

TEST_F(MIDIScenario, whatThePhoneAsksForIsPlayedToOtherPrograms) {
    ASSERT_NO_FATAL_FAILURE(meet());
    phone().skipToNow();
    phone().send("command SYNC");
    EXPECT_TRUE(phone().waitFor(std::regex("header .*midi-surface"), limit));
    Process& workstation = listen();
    phone().send("command VOL|3|-96");
    EXPECT_TRUE(workstation.waitFor(std::regex("Pitch bend +2, value -8192"), limit));
    phone().send("command VOL|0|12");
    EXPECT_TRUE(workstation.waitFor(std::regex("Pitch bend +8, value 8191"), limit));
    phone().send("command PAN|2|100");
    EXPECT_TRUE(workstation.waitFor(std::regex("Control change +1, controller 10, value 127"), limit));
    phone().send("command MUTE|2|1");
    EXPECT_TRUE(workstation.waitFor(std::regex("Note on +0, note 17, velocity 127"), limit));
    EXPECT_TRUE(workstation.waitFor(std::regex("Note off +0, note 17"), limit));
    phone().send("command VISO|1|1|65");
    EXPECT_TRUE(workstation.waitFor(std::regex("Control change +0, controller 28, value 82"), limit));
}

TEST_F(MIDIScenario, aFaderOfAWorkstationMovesThePhones) {
    ASSERT_NO_FATAL_FAILURE(meet());
    phone().skipToNow();
    desktop().client().beActiveAs("Ardour");
    EXPECT_TRUE(phone().waitFor("header org.ardour.Ardour", limit));
    play({"\0\xE1\x6B\x23", 4});
    EXPECT_TRUE(phone().waitFor(std::regex("track 2/.* -36\\.0 dB"), limit));
    desktop().client().beActiveAs("");
}

TEST_F(MIDIScenario, whatOtherProgramsPlayIsHeardInOrderBesideASecondSurface) {
    VirtualMainQueue queue;
    const MIDIKeeper::Plan plan{.systems = {AlsaConnection::open}, .retryDelay = 100ms};
    SystemMIDIEndpoints first(queue, plan);
    SystemMIDIEndpoints second(queue, plan);
    std::atomic<std::size_t> heard = 0;
    std::atomic<std::size_t> wrong = 0;
    const std::vector<MIDIMessage> expected{
        {0xE0, 0x6B, 0x23}, {0x90, 0x10, 0x7F}, {0xE8, 0x7F, 0x7F}, {0xE8, 0x00, 0x00}};
    first.onMessage = [&](const MIDIMessage& message) {
        if (heard >= expected.size() || message != expected[heard]) ++wrong;
        ++heard;
    };
    first.start();
    const auto isOnline = [&](const SystemMIDIEndpoints& endpoints) {
        return waitUntil(
            [&] {
                queue.runDue();
                return endpoints.isSourceOnline();
            },
            limit);
    };
    ASSERT_TRUE(isOnline(first));
    second.start();
    ASSERT_TRUE(isOnline(second)) << "names are no matter";

    // Running status, a long message and a program change among what is to be heard.
    play({"\0\xE0\x6B\x23\0\xF0\5\x7E\0\1\2\xF7\0\xC0\5\0\x90\x10\x7F\0\xE8\x7F\x7F\0\0\0", 26});
    EXPECT_TRUE(waitUntil([&] { return heard >= expected.size(); }, limit)) << heard;
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(heard, expected.size());

    Process& workstation = listen();
    second.stop();
    first.send({0xE7, 0x00, 0x40});
    EXPECT_TRUE(workstation.waitFor(std::regex("Pitch bend +7, value 0"), limit));
    first.stop();
    EXPECT_FALSE(first.isSourceOnline());
}

}  // namespace
}  // namespace orbinex::test
