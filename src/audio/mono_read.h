#pragma once

#include <cstddef>

namespace orbinex {

/// What a read folded to mono found. All 0 when no frame could be read.
struct MonoRead {
    std::size_t framesRead = 0;
    /// Largest magnitude of a sample in either channel; 1 is full scale.
    float peak = 0;
    /// Root of the mean square over both channels.
    float rms = 0;

    friend bool operator==(const MonoRead&, const MonoRead&) = default;
};

}  // namespace orbinex
