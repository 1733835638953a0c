#pragma once

#include <cstdint>
#include <optional>

#include "protocol/session_records.h"

namespace orbinex {

/// What an editor makes of one of its transport keys.
struct TransportKeyEffect {
    SessionTelemetry telemetry;
    /// Frames that the playhead is moved.
    int step = 0;

    friend bool operator==(const TransportKeyEffect&, const TransportKeyEffect&) = default;
};

/// Of L (plays, pressed again faster), J (plays backward), K (stops), the space bar (plays or stops) and the
/// left and right arrows (stop, and step one frame), by macOS virtual key code; nothing for any other key.
std::optional<TransportKeyEffect> transportKeyEffect(std::uint16_t keycode, const SessionTelemetry& now);

}  // namespace orbinex
