#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "protocol/meter_packet.h"

namespace orbinex::test_phone {

/// A bar of so many cells, from the left, in eighths of a cell: the part of it that `position` (0...1) is.
/// Where `mark` (0...1) lies beyond the bar, its cell holds a line; the rest is dots.
std::string bar(double position, double mark, int cells);
/// A column for each byte, in eighths of a line's height; 0 is a blank.
std::string columns(std::span<const std::uint8_t> bytes);

/// One line: the sequence number, a bar for each track (RMS, with the peak hold as its mark), the spectrum
/// and the amplitude history. "M" is the master bus, "*" the selected track, "!" clipping; tracks without a
/// signal say why.
std::string meterPicture(const DAWMeterPacket& meters);

}  // namespace orbinex::test_phone
