#pragma once

#include <cstdint>
#include <span>

namespace orbinex {

/// The shortest beginning of `steps` that the rest of them repeats, such as the 1602, 1601, 1602, 1601, 1602
/// samples of five pictures at 29.97 a second. Nothing when there is none that they have twice.
std::span<const std::int64_t> stepPattern(std::span<const std::int64_t> steps);

}  // namespace orbinex
