#include "editor_bridge/fader_law.h"

#include <algorithm>
#include <cmath>

namespace orbinex {

namespace {

constexpr double kneeDB = -36;
constexpr double kneePosition = 0.28;
constexpr double unityPosition = 0.78;
/// Around unity gain a fader catches.
constexpr double catchDB = 0.18;

double levelAt(double position) {
    if (!std::isfinite(position) || position < 0) return faderFloorDB;
    if (position >= 1) return faderCeilingDB;
    if (position >= unityPosition) return faderCeilingDB * (position - unityPosition) / (1 - unityPosition);
    if (position >= kneePosition)
        return kneeDB - kneeDB * (position - kneePosition) / (unityPosition - kneePosition);
    return faderFloorDB + (kneeDB - faderFloorDB) * position / kneePosition;
}

double clampedAround0(double value, double limit) {
    return std::isnan(value) ? 0 : std::clamp(value, -limit, limit);
}

}  // namespace

double clampedFaderDB(double dB) {
    return std::isfinite(dB) ? std::clamp(dB, faderFloorDB, faderCeilingDB) : faderFloorDB;
}

double clampedPan(double pan) {
    return clampedAround0(pan, 100);
}

double clampedLevelerDB(double dB) {
    return clampedAround0(dB, 12);
}

double faderDBToScalar(double dB) {
    if (!std::isfinite(dB) || dB < faderFloorDB) return 0;
    if (dB >= faderCeilingDB) return 1;
    if (dB >= 0) return unityPosition + (1 - unityPosition) * dB / faderCeilingDB;
    if (dB >= kneeDB) return kneePosition + (unityPosition - kneePosition) * (dB - kneeDB) / -kneeDB;
    return kneePosition * (dB - faderFloorDB) / (kneeDB - faderFloorDB);
}

double faderScalarToDB(double position) {
    const double dB = levelAt(position);
    if (std::abs(dB) < catchDB) return 0;
    return std::round(dB * 10) / 10;
}

}  // namespace orbinex
