#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "base/bytes.h"

namespace orbinex {

/// Both channels' samples, of 24 bits with a sign.
struct R3DFrame {
    std::int32_t left = 0;
    std::int32_t right = 0;
};

/// Makes the segment files of an R3D clip with audio and nothing else.
namespace R3DClipWriter {

/// An entry of a segment's index.
struct Entry {
    std::uint32_t page = 0;
    std::uint32_t length = 0;
};

/// A block of these frames, its head included, filled up to a whole page.
Bytes block(std::span<const R3DFrame> frames);
/// A segment of blocks, one after the other from the second page on, with the index that fits.
Bytes segment(const std::vector<std::vector<R3DFrame>>& blocks);
/// A segment whose index says what it likes: the blocks' bytes, the index, and the page that tells where it
/// is.
Bytes segment(const Bytes& blocks, const std::vector<Entry>& entries);
/// The frames in segments of `framesInSegment`, which have blocks of `framesInBlock`; the last are shorter.
std::vector<Bytes> clip(std::span<const R3DFrame> frames, std::size_t framesInBlock,
                        std::size_t framesInSegment);

}  // namespace R3DClipWriter

}  // namespace orbinex
