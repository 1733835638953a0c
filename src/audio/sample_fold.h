#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "audio/mono_read.h"

namespace orbinex {

// A run of frames folded to mono and measured. `samples` holds whole frames, the channels of a frame side by
// side; each frame's mean of left and right goes to `mono`, which has room for all of them. One channel
// counts as left and right.
//
// Means, peaks and squares are single precision, as if worked out frame by frame. The squares are summed in
// eight partial sums, which is quicker and loses less than one sum would. A sample that is not a number
// raises no peak.

MonoRead foldStereo(std::span<const float> samples, std::span<float> mono);
MonoRead foldMono(std::span<const float> samples, std::span<float> mono);
/// The same for 16-bit samples, of full scale 32768.
MonoRead foldStereo(std::span<const std::int16_t> samples, std::span<float> mono);
MonoRead foldMono(std::span<const std::int16_t> samples, std::span<float> mono);

}  // namespace orbinex
