#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/known_editors.h"
#include "protocol/control_message.h"
#include "sim/recording_command_file.h"
#include "sim/simulated_clip_media.h"
#include "sim/simulated_midi_endpoints.h"
#include "sim/simulated_script_host.h"
#include "sim/simulated_system_volume.h"
#include "sim/simulated_workspace.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {

inline const RunningApplication resolve{std::string(resolveBundleID), "DaVinci Resolve"};
inline const RunningApplication logic{"com.apple.logic10", "Logic Pro"};
inline const RunningApplication terminal{"org.example.terminal", "Terminal"};

/// A bridge with everything around it, in virtual time. What it tells the iPhone is kept in order.
class BridgeWorld {
  public:
    BridgeWorld() { start(); }

    /// Creates the bridge, as at the program's start; the one before has ended.
    void start() { start(midi); }
    /// With other MIDI endpoints, which the bridge must not outlive.
    void start(MIDIEndpoints& endpoints) {
        daemon.reset();
        daemon = std::make_unique<AppWatcherDaemon>(
            AppWatcherDaemon::Ports{queue, workspace, host, commandFile, volume, clips, endpoints});
        daemon->onActiveAppChanged = [this](const std::string& bundleID) { activeApps.push_back(bundleID); };
        daemon->onTelemetryChanged = [this](const SessionTelemetry& telemetry) { told.push_back(telemetry); };
        daemon->onDAWPacketReady = [this](ByteView message) {
            packets.push_back(ControlMessage::decode(message).value());
        };
    }

    void run(std::chrono::nanoseconds span) { queue.advance(span); }
    void print(std::string_view text) { host.print(text); }
    void command(const char* text) { daemon->handleCommand(DAWCommand::decode(text).value()); }
    /// Resolve runs, is in front, and the iPhone is connected; nothing of that is kept.
    void beginSession() {
        workspace.activate(resolve);
        daemon->setBLEClientConnected(true);
        forget();
    }
    void forget() {
        activeApps.clear();
        told.clear();
        packets.clear();
        commandFile.lines.clear();
        midi.sent.clear();
    }
    /// A message of the workstation, and its way to the main thread.
    void feedback(const MIDIMessage& message) {
        midi.inject(message);
        queue.runDue();
    }
    /// The kinds of the packets: H for a header, T and the index for a track, M for meters.
    [[nodiscard]] std::string packetKinds() const {
        std::string kinds;
        for (const auto& packet : packets) {
            if (!kinds.empty()) kinds += ' ';
            if (std::holds_alternative<DAWHeader>(packet.value)) kinds += 'H';
            if (std::holds_alternative<DAWMeterPacket>(packet.value)) kinds += 'M';
            if (const auto* track = std::get_if<DAWTrackState>(&packet.value))
                kinds += 'T' + std::to_string(track->index);
        }
        return kinds;
    }
    [[nodiscard]] const DAWSessionSnapshot& session() const { return *daemon->dawSnapshot; }
    [[nodiscard]] std::vector<std::int64_t> trackIndices() const {
        std::vector<std::int64_t> result;
        for (const auto& track : session().tracks) result.push_back(track.index);
        return result;
    }

    VirtualMainQueue queue;
    SimulatedWorkspace workspace;
    SimulatedScriptHost host;
    RecordingCommandFile commandFile;
    SimulatedSystemVolume volume;
    SimulatedClipMedia media;
    DirectSourceOpener clips{media};
    SimulatedMIDIEndpoints midi;

    std::vector<std::string> activeApps;
    std::vector<SessionTelemetry> told;
    std::vector<ControlMessage> packets;

    std::unique_ptr<AppWatcherDaemon> daemon;
};

}  // namespace orbinex
