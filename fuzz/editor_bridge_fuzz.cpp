// Commands of the iPhone, lines of the script, keys, faders, editors and time, in any order: an event a line,
// whose first character tells its kind.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>

#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/known_editors.h"
#include "require.h"
#include "sim/recording_command_file.h"
#include "sim/simulated_clip_media.h"
#include "sim/simulated_midi_endpoints.h"
#include "sim/simulated_script_host.h"
#include "sim/simulated_system_volume.h"
#include "sim/simulated_workspace.h"
#include "sim/virtual_main_queue.h"

using namespace orbinex;

namespace {

struct World {
    VirtualMainQueue queue;
    SimulatedWorkspace workspace;
    SimulatedScriptHost host;
    RecordingCommandFile commandFile;
    SimulatedSystemVolume volume;
    SimulatedClipMedia media;
    DirectSourceOpener clips{media};
    SimulatedMIDIEndpoints midi;
    AppWatcherDaemon daemon{{queue, workspace, host, commandFile, volume, clips, midi}};

    void happen(std::string_view event) {
        const std::string rest(event.substr(1));
        switch (event[0]) {
            case '<':
                if (host.isRunning()) host.print(rest + '\n');
                return;
            case '>':
                if (const auto command = DAWCommand::decode(rest)) daemon.handleCommand(*command);
                return;
            case 'k':
                for (const char key : rest) daemon.handleTransportKey(static_cast<unsigned char>(key), {});
                return;
            case 'm':
                for (std::size_t i = 0; i + 3 <= rest.size(); i += 3) {
                    midi.inject({static_cast<std::uint8_t>(rest[i]), static_cast<std::uint8_t>(rest[i + 1]),
                                 static_cast<std::uint8_t>(rest[i + 2])});
                }
                queue.runDue();
                return;
            case 'e': return workspace.activate({rest, rest});
            default: queue.advance(std::chrono::milliseconds(10) * event.size());
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    World world;
    world.workspace.activate({std::string(resolveBundleID), "DaVinci Resolve"});
    world.daemon.setBLEClientConnected(true);
    std::string_view events(reinterpret_cast<const char*>(data), size);
    while (!events.empty()) {
        const auto end = std::min(events.find('\n'), events.size());
        if (end > 0) world.happen(events.substr(0, end));
        events.remove_prefix(std::min(end + 1, events.size()));
        const auto& session = *world.daemon.dawSnapshot;
        REQUIRE(world.daemon.currentPlayheadFrame() >= 0 && world.daemon.selectedTrackIndex() >= 0);
        REQUIRE(std::isfinite(world.daemon.currentTelemetry->fps) && std::isfinite(session.masterVolumeDB));
        REQUIRE(std::ranges::all_of(session.tracks, [](const DAWTrackState& track) {
            return std::isfinite(track.pan) && track.volumeDB >= -96 && track.volumeDB <= 12;
        }));
        for (const auto& line : world.commandFile.lines) REQUIRE(line.find('\n') == std::string::npos);
        world.commandFile.lines.clear();
    }
    return 0;
}
