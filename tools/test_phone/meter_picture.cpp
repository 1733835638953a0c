#include "test_phone/meter_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "protocol/meter_scale.h"

namespace orbinex::test_phone {

namespace {

constexpr int cellsOfTrack = 8;
constexpr std::array<std::string_view, 9> fromLeft{" ", "▏", "▎", "▍", "▌", "▋", "▊", "▉", "█"};
constexpr std::array<std::string_view, 9> fromBelow{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};

std::string_view remark(TrackMeterStatus status) {
    switch (status) {
        case TrackMeterStatus::activeSignal: return "";
        case TrackMeterStatus::silence: return " silence";
        case TrackMeterStatus::unavailable: return " unavailable";
        case TrackMeterStatus::stale: return " stale";
        case TrackMeterStatus::disconnected: break;
    }
    return " disconnected";
}

std::string track(const TrackChannelMeter& meter, bool isSelected) {
    std::string result = meter.trackIndex == 0 ? "M" : std::to_string(meter.trackIndex);
    result += isSelected ? "*" : " ";
    result += bar(meterPosition(meter.rmsDBFS), meterPosition(meter.peakHoldDBFS), cellsOfTrack);
    if (meter.isClipping) result += "!";
    return result.append(remark(meter.status));
}

}  // namespace

std::string bar(double position, double mark, int cells) {
    const auto eighths = [cells](double place) {
        return static_cast<int>(std::lround(std::clamp(place, 0.0, 1.0) * 8 * cells));
    };
    const int filled = eighths(position);
    const int markCell = std::min(eighths(mark) / 8, cells - 1);
    std::string result;
    for (int cell = 0; cell < cells; ++cell) {
        const int part = std::clamp(filled - 8 * cell, 0, 8);
        if (part > 0) {
            result += fromLeft[static_cast<std::size_t>(part)];
        } else {
            result += cell == markCell && mark > 0 ? "│" : "·";
        }
    }
    return result;
}

std::string columns(std::span<const std::uint8_t> bytes) {
    std::string result;
    for (const auto byte : bytes) result += fromBelow[(static_cast<std::size_t>(byte) * 8 + 254) / 255];
    return result;
}

std::string meterPicture(const DAWMeterPacket& meters) {
    std::string result = "meters " + std::to_string(meters.sequence);
    for (const auto& meter : meters.channelMeters) {
        result += "  " + track(meter, meter.trackIndex == meters.selectedTrackIndex);
    }
    if (!meters.spectrumBands.empty()) result += "  spectrum " + columns(meters.spectrumBands);
    if (!meters.amplitudeHistory.empty()) result += "  history " + columns(meters.amplitudeHistory);
    return result;
}

}  // namespace orbinex::test_phone
