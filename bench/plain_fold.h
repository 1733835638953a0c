#pragma once

#include <cstddef>
#include <cstdint>

#include "audio/mono_read.h"

namespace orbinex {

/// The fold to mono as one writes it down: one sum, one peak, frame by frame. Compiled with -O2.
MonoRead plainFold(const float* samples, std::size_t frames, float* mono);
MonoRead plainFold(const std::int16_t* samples, std::size_t frames, float* mono);

}  // namespace orbinex
