#include "phone_session.h"

#include <algorithm>
#include <type_traits>
#include <variant>

namespace orbinex::demo {

PhoneSession::Change PhoneSession::apply(const ControlMessage& message) {
    return std::visit(
        [this](const auto& told) {
            using Told = std::decay_t<decltype(told)>;
            if constexpr (std::is_same_v<Told, ControlMessage::Hello>) {
                computer = told.macName;
                return Change::computer;
            } else if constexpr (std::is_same_v<Told, SessionTelemetry>) {
                telemetry = told;
                return Change::telemetry;
            } else if constexpr (std::is_same_v<Told, DAWTrackState>) {
                put(told);
                return Change::tracks;
            } else if constexpr (std::is_same_v<Told, DAWMeterPacket>) {
                meters = told;
                selectedTrack = told.selectedTrackIndex;
                return Change::meters;
            } else {
                return Change::nothing;
            }
        },
        message.value);
}

DAWTrackState PhoneSession::unknownMaster() {
    DAWTrackState master;
    master.index = 0;
    master.name = "Master";
    master.isMaster = true;
    return master;
}

void PhoneSession::put(const DAWTrackState& state) {
    if (state.isMaster || state.index == 0) {
        master = state;
        return;
    }
    if (state.index < 1 || state.index > mostTracks) return;
    std::erase_if(tracks, [&](const DAWTrackState& track) { return track.index > state.totalTracks; });
    const auto place = std::ranges::lower_bound(tracks, state.index, {}, &DAWTrackState::index);
    if (place != tracks.end() && place->index == state.index) {
        *place = state;
    } else {
        tracks.insert(place, state);
    }
}

DAWTrackState* PhoneSession::track(std::int64_t index) {
    if (index == 0) return &master;
    const auto found = std::ranges::find(tracks, index, &DAWTrackState::index);
    return found == tracks.end() ? nullptr : &*found;
}

const TrackChannelMeter* PhoneSession::meter(std::int64_t index) const {
    const auto found = std::ranges::find(meters.channelMeters, index, &TrackChannelMeter::trackIndex);
    return found == meters.channelMeters.end() ? nullptr : &*found;
}

}  // namespace orbinex::demo
