// What the editor's session costs: a dump of 64 tracks on its way from the script's output to the iPhone's
// packets, beside a loop that only splits the same bytes, and a report of the timecode that changes nothing.

#include <array>
#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/known_editors.h"
#include "median_reporter.h"
#include "sim/recording_command_file.h"
#include "sim/simulated_clip_media.h"
#include "sim/simulated_midi_endpoints.h"
#include "sim/simulated_script_host.h"
#include "sim/simulated_system_volume.h"
#include "sim/simulated_workspace.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {
namespace {

constexpr int tracks = 64;
constexpr int linesInDump = tracks + 1;

/// As the script prints it. `volume` differs from dump to dump, as while faders move.
std::string dump(double volume) {
    std::string text = "OXHDR|64|1|Shot 12 graded.mov|5\n";
    std::array<char, 256> line{};
    for (int i = 1; i <= tracks; ++i) {
        const int length = std::snprintf(line.data(), line.size(),
                                         "OXTRK|%d|64|Dialogue %d|Interview take "
                                         "%d.wav|STEREO|1|0|%.2f|%.1f|1|80|0|0.0|1|%d_86400|86400|48|"
                                         "/media/project/audio/interview take %d.wav\n",
                                         i, i, i, volume - i, i - 32.0, i, i);
        text.append(line.data(), static_cast<std::size_t>(length));
    }
    return text;
}

std::vector<std::string> split(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (auto end = line.find('|'); end != std::string::npos; end = line.find('|', start)) {
        fields.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    fields.push_back(line.substr(start));
    return fields;
}

void splitOnly(benchmark::State& state) {
    const std::string texts[] = {dump(0), dump(-1)};
    std::size_t round = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::istringstream stream(texts[++round % 2]);
        for (std::string line; std::getline(stream, line);) {
            auto fields = split(line);
            benchmark::DoNotOptimize(fields);
        }
    }
    state.SetItemsProcessed(state.iterations() * linesInDump);
}

/// A bridge whose iPhone is connected.
struct Session {
    Session() {
        workspace.activate({std::string(resolveBundleID), "DaVinci Resolve"});
        bridge.onDAWPacketReady = [this](ByteView message) { bytes += message.size(); };
        bridge.onTelemetryChanged = [this](const SessionTelemetry&) { ++telemetries; };
        bridge.setBLEClientConnected(true);
    }

    VirtualMainQueue queue;
    SimulatedWorkspace workspace;
    SimulatedScriptHost host;
    RecordingCommandFile commandFile;
    SimulatedSystemVolume volume;
    SimulatedClipMedia media;
    DirectSourceOpener clips{media};
    SimulatedMIDIEndpoints midi;
    AppWatcherDaemon bridge{{queue, workspace, host, commandFile, volume, clips, midi}};
    std::size_t bytes = 0;
    std::size_t telemetries = 0;
};

void parseAndEncode(benchmark::State& state) {
    const std::string texts[] = {dump(0), dump(-1)};
    Session session;
    std::size_t round = 0;
    for ([[maybe_unused]] auto _ : state) session.host.print(texts[++round % 2]);
    if (session.bytes == 0) state.SkipWithError("nothing is sent");
    state.SetItemsProcessed(state.iterations() * linesInDump);
}

void unchangedTimecode(benchmark::State& state) {
    Session session;
    const std::string line = "OXTC|01:00:10:00|29.97 DF|RESOLVE 19.1|Reel 1 final|edit|1|107892\n";
    session.host.print(line);
    const auto before = session.telemetries;
    for ([[maybe_unused]] auto _ : state) session.host.print(line);
    if (session.telemetries != before) state.SkipWithError("it is told again");
    state.SetItemsProcessed(state.iterations());
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    const std::pair<const char*, void (*)(benchmark::State&)> all[] = {
        {"getline and split 64 tracks", orbinex::splitOnly},
        {"parse and encode 64 tracks", orbinex::parseAndEncode},
        {"timecode that changes nothing", orbinex::unchangedTimecode},
    };
    for (const auto& [name, run] : all) {
        benchmark::RegisterBenchmark(name, run)->Repetitions(9)->ReportAggregatesOnly();
    }
    orbinex::MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double bare = reporter.medians["getline and split 64 tracks"];
    const double ours = reporter.medians["parse and encode 64 tracks"];
    if (bare > 0 && ours > 0) {
        std::printf(
            "\nratio  parse and encode / getline and split  %.2f  (%.2f / %.2f million lines a second; "
            "wanted: "
            "at most 3)\n",
            ours / bare, 1e3 * orbinex::linesInDump / ours, 1e3 * orbinex::linesInDump / bare);
    }
    return 0;
}
