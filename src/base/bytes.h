#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace orbinex {

/// Bytes that are owned, such as an encoded message.
using Bytes = std::vector<std::uint8_t>;
/// Bytes that somebody else owns, valid for the duration of the call that hands them over.
using ByteView = std::span<const std::uint8_t>;

}  // namespace orbinex
