#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/bytes.h"

namespace orbinex {

/// The values are those on the wire.
enum class TrackMeterStatus : std::uint8_t {
    activeSignal = 0,
    silence = 1,
    unavailable = 2,
    stale = 3,
    disconnected = 4,
};

/// The levels of one track.
struct TrackChannelMeter {
    /// 1-based; the master bus is 0.
    std::int64_t trackIndex = 0;
    TrackMeterStatus status = TrackMeterStatus::silence;
    /// All levels in dBFS; -288 means no signal.
    double peakDBFS = -288;
    double rmsDBFS = -288;
    double peakHoldDBFS = -288;
    bool isClipping = false;

    friend bool operator==(const TrackChannelMeter&, const TrackChannelMeter&) = default;
};

/// The audio meters of the session at one moment.
struct DAWMeterPacket {
    std::uint16_t sequence = 0;
    std::uint32_t timestampMs = 0;
    std::int64_t selectedTrackIndex = 0;
    TrackMeterStatus selectedTrackStatus = TrackMeterStatus::silence;
    std::vector<TrackChannelMeter> channelMeters;
    /// Meter scale bytes (see meterByte), low frequencies first.
    std::vector<std::uint8_t> spectrumBands;
    /// Meter scale bytes, oldest first.
    std::vector<std::uint8_t> amplitudeHistory;

    /// What stands in before anything has been measured: four silent tracks.
    static DAWMeterPacket placeholder();

    friend bool operator==(const DAWMeterPacket&, const DAWMeterPacket&) = default;
};

/// The most that one meter message carries.
inline constexpr std::size_t maximumChannelMeters = 12;
inline constexpr std::size_t maximumSpectrumBands = 24;
inline constexpr std::size_t maximumAmplitudeHistory = 24;

/// A complete control message of at most 120 bytes, little-endian:
///
///     0       1  type
///     1       2  sequence
///     3       4  timestampMs
///     7       1  selectedTrackIndex, limited to 0...255
///     8       1  selectedTrackStatus
///     9       1  n, then n channel meters of 5 bytes:
///                trackIndex limited to 0...255; 0x80 if clipping | status; peak, RMS and peak hold on the
///                meter scale
///     10+5n   1  b, then b spectrum bands
///     11+5n+b 1  h, then h amplitude history bytes
///
/// What exceeds the maxima is dropped, the first entries stay.
Bytes encodeMeter(const DAWMeterPacket& packet);
/// The same in place of what `message` holds, in its memory.
void encodeMeter(const DAWMeterPacket& packet, Bytes& message);

/// Reads a whole message, type byte included. Nothing when it is not of the meter type or ends before its
/// last channel meter. An unknown status is silence. Bands or history whose bytes are not all there are
/// empty.
std::optional<DAWMeterPacket> decodeMeter(ByteView message);

}  // namespace orbinex
