#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace orbinex::test_phone {

/// A place on the screen in points, from where the pointer was at first.
struct Offset {
    int x = 0;
    int y = 0;
    friend bool operator==(const Offset&, const Offset&) = default;
};

/// Where the pointer is after so many numbered moves: along the lines of a square of 100 by 100 points, to
/// and fro and downwards, one point at a time, and all the way back. A move that was lost or doubled thus
/// stays visible in every place after it.
Offset offsetAfter(std::uint32_t moves);

/// The packet that goes from there to the next place. Behind it stands its number in little-endian order,
/// which decoders of packets do not look at.
Bytes numberedMove(std::uint32_t number);

}  // namespace orbinex::test_phone
