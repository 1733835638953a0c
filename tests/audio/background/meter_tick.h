#pragma once

#include <cstddef>
#include <cstdint>

namespace orbinex::test {

/// Calls `read(start, frames)` as a meter tick does for the selected track: the level at the playhead, then a
/// history of windows one video frame apart around it.
template <class Read>
void readAsMeterTick(std::int64_t playhead, std::int64_t samplesPerFrame, Read&& read) {
    read(playhead, std::size_t{1024});
    for (std::int64_t i = -8; i < 8; ++i)
        if (const auto start = playhead + i * samplesPerFrame; start >= 0) read(start, std::size_t{256});
}

}  // namespace orbinex::test
