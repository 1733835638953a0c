#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "protocol/control_message.h"

namespace orbinex::demo {

/// What the phone shows of what it was told by the computer, put together.
struct PhoneSession {
    enum class Link { off, waiting, connected };
    /// What a message has changed.
    enum class Change { nothing, computer, telemetry, tracks, meters };
    /// Tracks of which there is room on the phone; others are not kept.
    static constexpr std::int64_t mostTracks = 64;

    Link link = Link::off;
    std::string computer;
    SessionTelemetry telemetry;
    /// In the order of their indices, the master not among them.
    std::vector<DAWTrackState> tracks;
    DAWTrackState master = unknownMaster();
    DAWMeterPacket meters;
    std::int64_t selectedTrack = 1;

    Change apply(const ControlMessage& message);
    /// The track with that index, the master for 0; null when there is none.
    [[nodiscard]] DAWTrackState* track(std::int64_t index);
    /// The levels of that track; null when the last meters told of none.
    [[nodiscard]] const TrackChannelMeter* meter(std::int64_t index) const;

  private:
    static DAWTrackState unknownMaster();
    void put(const DAWTrackState& state);
};

}  // namespace orbinex::demo
