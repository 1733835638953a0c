#pragma once

#include <cstdint>

namespace orbinex {

/// The piecewise linear scale that meters, spectrum bands and history are shown on: a level in dBFS to its
/// place from 0 (-288 dB and below, or not finite) to 1 (0 dB and above).
double meterPosition(double dB);
/// The place as a byte, rounded to the nearest, halves up.
std::uint8_t meterByte(double dB);
/// The level in dBFS, -288 to 0, that has this place; places outside 0...1 are limited, a not finite one
/// gives -288.
double dbFromMeterPosition(double position);

}  // namespace orbinex
