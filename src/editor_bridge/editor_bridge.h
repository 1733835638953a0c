#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "base/bytes.h"
#include "base/published.h"
#include "protocol/daw_command.h"
#include "protocol/input_packet.h"
#include "protocol/session_records.h"

namespace orbinex {

/// What the rest of the program asks of the editor bridge, and what it tells them. Main thread only.
class EditorBridge {
  public:
    EditorBridge() = default;
    EditorBridge(const EditorBridge&) = delete;
    EditorBridge& operator=(const EditorBridge&) = delete;
    virtual ~EditorBridge() = default;

    /// The link to a trusted iPhone has become usable (true), or is gone (false).
    virtual void setBLEClientConnected(bool connected) = 0;
    /// A command from the iPhone.
    virtual void handleCommand(const DAWCommand& command) = 0;
    /// A key that the iPhone has pressed: macOS virtual key code and the packet's modifiers.
    virtual void handleTransportKey(std::uint16_t keycode, ModifierFlags modifiers) = 0;

    /// The frontmost application's identifier, empty when it has none or none is known.
    Published<std::string, EditorBridge> activeBundleID;
    Published<SessionTelemetry, EditorBridge> currentTelemetry{{.timecode = "01:00:00:00",
                                                                .fps = 24.0,
                                                                .appVersion = "RESOLVE",
                                                                .timelineName = "Timeline",
                                                                .pageName = "EDIT",
                                                                .playbackSpeed = "0X",
                                                                .isPlaying = false}};

    /// The frontmost application has changed.
    std::function<void(const std::string& bundleID)> onActiveAppChanged;
    std::function<void(const SessionTelemetry&)> onTelemetryChanged;
    /// A complete control message (header, track or meter) to be sent as it is.
    std::function<void(ByteView message)> onDAWPacketReady;

  protected:
    void setActiveBundleID(std::string bundleID) { activeBundleID = std::move(bundleID); }
    void setCurrentTelemetry(SessionTelemetry telemetry) { currentTelemetry = std::move(telemetry); }
};

}  // namespace orbinex
