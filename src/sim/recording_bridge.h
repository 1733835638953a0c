#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "editor_bridge/editor_bridge.h"

namespace orbinex {

/// An editor bridge that notes what it is told, and tells what it is set to.
class RecordingBridge final : public EditorBridge {
  public:
    RecordingBridge() {
        setActiveBundleID("org.example.editor");
        setCurrentTelemetry(SessionTelemetry{.timecode = "01:02:03:04",
                                             .fps = 25,
                                             .appVersion = "EDITOR",
                                             .timelineName = "Reel 1",
                                             .pageName = "EDIT",
                                             .playbackSpeed = "0X",
                                             .isPlaying = false});
    }

    void setBLEClientConnected(bool connected) override { isConnected = connected; }
    void handleCommand(const DAWCommand& command) override { commands.push_back(command); }
    void handleTransportKey(std::uint16_t keycode, ModifierFlags modifiers) override {
        transportKeys.emplace_back(keycode, modifiers);
    }

    bool isConnected = false;
    std::vector<DAWCommand> commands;
    std::vector<std::pair<std::uint16_t, ModifierFlags>> transportKeys;
};

}  // namespace orbinex
