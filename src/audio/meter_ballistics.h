#pragma once

#include <chrono>
#include <cstdint>

#include "audio/dbfs.h"
#include "protocol/meter_packet.h"

namespace orbinex {

/// How a track's meter moves: at once up, slowly down. One step is one call, so the steps' period, 66 ms, is
/// part of the constants.
struct BallisticsState {
    using Uptime = std::chrono::nanoseconds;

    double smoothedPeakDBFS = silenceDBFS;
    double smoothedRMSDBFS = silenceDBFS;
    double peakHoldDBFS = silenceDBFS;
    /// When the hold was last raised.
    Uptime peakHoldTime{0};
    /// Until when the clip indicator stays on.
    Uptime clipHoldUntil{0};

    /// One step with a signal of this peak and RMS (magnitudes, 1 is full scale).
    void hear(double peakLinear, double rmsLinear, Uptime now);
    /// One step without a signal.
    void fallSilent(Uptime now);

    [[nodiscard]] TrackChannelMeter meter(std::int64_t trackIndex, TrackMeterStatus status,
                                          Uptime now) const {
        return {trackIndex, status, smoothedPeakDBFS, smoothedRMSDBFS, peakHoldDBFS, now < clipHoldUntil};
    }

    friend bool operator==(const BallisticsState&, const BallisticsState&) = default;
};

}  // namespace orbinex
