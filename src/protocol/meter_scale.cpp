#include "protocol/meter_scale.h"

#include <algorithm>
#include <cmath>

namespace orbinex {

namespace {

constexpr double floorDB = -288;

}  // namespace

double meterPosition(double dB) {
    if (!std::isfinite(dB)) return 0;
    if (dB >= 0) return 1;
    if (dB >= -6) return 0.86 + 0.14 * (dB + 6) / 6;
    if (dB >= -18) return 0.68 + 0.18 * (dB + 18) / 12;
    if (dB >= -48) return 0.40 + 0.28 * (dB + 48) / 30;
    if (dB >= -96) return 0.20 + 0.20 * (dB + 96) / 48;
    return 0.20 * (std::max(dB, floorDB) - floorDB) / 192;
}

std::uint8_t meterByte(double dB) {
    return static_cast<std::uint8_t>(std::clamp(std::round(meterPosition(dB) * 255), 0.0, 255.0));
}

double dbFromMeterPosition(double position) {
    if (!std::isfinite(position)) return floorDB;
    if (position >= 1) return 0;
    if (position >= 0.86) return -6 + 6 * (position - 0.86) / 0.14;
    if (position >= 0.68) return -18 + 12 * (position - 0.68) / 0.18;
    if (position >= 0.40) return -48 + 30 * (position - 0.40) / 0.28;
    if (position >= 0.20) return -96 + 48 * (position - 0.20) / 0.20;
    return floorDB + 192 * std::max(position, 0.0) / 0.20;
}

}  // namespace orbinex
