// How long a fader's command takes from its bytes, as the phone sends them, to the MIDI message in another
// process, beside a bare JACK client that plays the same message to another such process, in one run on a
// server of its own. Ends with 1 when a message is missing or another one than was sent.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include <jack/jack.h>
#include <jack/midiport.h>

#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/midi/jack_connection.h"
#include "editor_bridge/midi/message_ring.h"
#include "editor_bridge/midi/system_midi_endpoints.h"
#include "editor_bridge/midi_surface.h"
#include "protocol/control_message.h"
#include "sim/recording_command_file.h"
#include "sim/simulated_clip_media.h"
#include "sim/simulated_script_host.h"
#include "sim/simulated_system_volume.h"
#include "sim/simulated_workspace.h"
#include "sim/virtual_main_queue.h"
#include "support/private_jack_server.h"
#include "support/workstation_process.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int messages = 1000;
/// Messages meet every moment of the server's period, which is 5.3 ms.
constexpr std::array<int, 2> pauseMicroseconds{4'000, 12'000};

template <class Condition>
void await(Condition condition, const char* what) {
    const auto end = Clock::now() + 20s;
    while (!condition()) {
        if (Clock::now() > end) throw std::runtime_error(what);
        std::this_thread::sleep_for(1ms);
    }
}

/// The level of the n-th command, in dB: no two in a row have the same position.
double level(int n) {
    return -(n % 90) / 10.0;
}

/// The bridge as the program has it, with the iPhone and the editor simulated.
class Program {
  public:
    Program() {
        await(
            [this] {
                queue_.runDue();
                return endpoints_.isSourceOnline();
            },
            "the surface does not come");
    }
    void send(ByteView bytes) {
        const auto message = ControlMessage::decode(bytes);
        bridge_.handleCommand(std::get<DAWCommand>(message->value));
    }

  private:
    VirtualMainQueue queue_;
    SimulatedWorkspace workspace_;
    SimulatedScriptHost host_;
    RecordingCommandFile file_;
    SimulatedSystemVolume volume_;
    SimulatedClipMedia media_;
    DirectSourceOpener clips_{media_};
    SystemMIDIEndpoints endpoints_{queue_, {.systems = {JackConnection::open}, .retryDelay = 100ms}};
    AppWatcherDaemon bridge_{{queue_, workspace_, host_, file_, volume_, clips_, endpoints_}};
};

/// The least that plays a message.
class BarePlayer {
  public:
    BarePlayer() : client_(jack_client_open("bare", JackNoStartServer, nullptr)) {
        if (!client_) throw std::runtime_error("no JACK server");
        port_ = jack_port_register(client_, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        // The listener connects to both.
        jack_port_register(client_, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(
            client_,
            [](jack_nframes_t frames, void* self) { return static_cast<BarePlayer*>(self)->play(frames); },
            this);
        jack_activate(client_);
    }
    BarePlayer(const BarePlayer&) = delete;
    BarePlayer& operator=(const BarePlayer&) = delete;
    ~BarePlayer() { jack_client_close(client_); }

    void send(const MIDIMessage& message) { waiting_.push(message); }

  private:
    int play(jack_nframes_t frames) {
        void* const buffer = jack_port_get_buffer(port_, frames);
        jack_midi_clear_buffer(buffer);
        // More than one when a period was late.
        for (; const auto* const message = waiting_.front(); waiting_.pop()) {
            auto* const bytes = jack_midi_event_reserve(buffer, 0, message->size());
            if (!bytes) break;
            std::ranges::copy(*message, bytes);
        }
        return 0;
    }

    jack_client_t* client_;
    jack_port_t* port_ = nullptr;
    MessageRing waiting_{messages};
};

/// One way to a process that listens.
struct Path {
    const char* name;
    test::WorkstationProcess& listener;
    std::function<void(int)> send;
    std::vector<std::int64_t> sentAt = {};
    std::vector<double> microseconds = {};

    void take() {
        const auto& lines = listener.lines();
        // The first says that it is connected.
        for (std::size_t n = microseconds.size(); n + 1 < lines.size(); ++n) {
            unsigned long long time = 0;
            std::array<unsigned, 3> heard{};
            if (std::sscanf(lines[n + 1].c_str(), "%llu %x %x %x", &time, &heard[0], &heard[1], &heard[2]) !=
                4)
                throw std::runtime_error("what was heard is no message: " + lines[n + 1]);
            const auto expected = faderMessage(0, level(static_cast<int>(n)));
            if (!std::ranges::equal(heard, expected))
                throw std::runtime_error("another message: " + lines[n + 1]);
            microseconds.push_back(static_cast<double>(static_cast<std::int64_t>(time) - sentAt.at(n)) / 1e3);
        }
    }
    [[nodiscard]] double quantile(double share) {
        std::ranges::sort(microseconds);
        return microseconds.at(
            static_cast<std::size_t>(share * static_cast<double>(microseconds.size() - 1)));
    }
};

void run() {
    test::PrivateJackServer server;
    server.start();
    Program program;
    BarePlayer bare;
    test::WorkstationProcess ours({"--times", "--name", "ours"});
    test::WorkstationProcess theirs({"--times", "--name", "theirs", "--from", "bare:out", "--to", "bare:in"});
    const auto isConnected = [](auto& listener) {
        return !listener.lines().empty() && listener.lines().back() == "connected";
    };
    await([&] { return isConnected(ours) && isConnected(theirs); }, "a listener is not connected");

    std::vector<Bytes> commands;
    for (int n = 0; n < messages; ++n)
        commands.push_back(ControlMessage{DAWCommand{DAWCommand::SetTrackVolume{1, level(n)}}}.encode());
    std::array<Path, 2> paths{
        Path{"the program", ours, [&](int n) { program.send(commands[static_cast<std::size_t>(n)]); }},
        Path{"a bare JACK client", theirs, [&](int n) { bare.send(faderMessage(0, level(n))); }}};
    std::mt19937 random(1);
    std::uniform_int_distribution<int> pause(pauseMicroseconds[0], pauseMicroseconds[1]);
    for (int n = 0; n < messages; ++n) {
        for (auto& path : paths) {
            std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
            path.sentAt.push_back(Clock::now().time_since_epoch().count());
            path.send(n);
        }
    }
    for (auto& path : paths) {
        await(
            [&path] {
                path.take();
                return path.microseconds.size() == messages;
            },
            "a message is missing");
        std::printf("%-20s median %7.0f us, 99 %% %7.0f us\n", path.name, path.quantile(0.5),
                    path.quantile(0.99));
    }
    std::printf("ratio                       %10.3f      %10.3f\n",
                paths[0].quantile(0.5) / paths[1].quantile(0.5),
                paths[0].quantile(0.99) / paths[1].quantile(0.99));
}

}  // namespace
}  // namespace orbinex

int main() {
    try {
        orbinex::run();
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "bench_midi: %s\n", fault.what());
        return 1;
    }
    return 0;
}
