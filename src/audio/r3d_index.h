#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/bytes.h"

namespace orbinex {

/// A run of an R3D clip's audio. A block is a head of 128 bytes, which is skipped, and frames of 8 bytes: two
/// channels, each a signed 24-bit little-endian sample and a byte that is not used.
struct AudioBlock {
    static constexpr std::size_t headerSize = 128;
    static constexpr std::size_t frameSize = 8;

    /// Which of the clip's segment files it lies in.
    std::size_t segmentIndex = 0;
    /// Of the block in that file.
    std::uint64_t fileOffset = 0;
    /// As the index tells it, head included.
    std::int64_t byteLength = 0;
    std::int64_t sampleFrameCount = 0;
    /// Number in the clip of its first frame: blocks follow one another without a gap.
    std::int64_t cumulativeStartSample = 0;

    friend bool operator==(const AudioBlock&, const AudioBlock&) = default;
};

/// A segment's audio index, as it lies in the file. All numbers are big-endian; a page is 4096 bytes.
///
///     last page of the file   p      4  "rda" and 1; the first such place counts
///                             p+4    4  page number of the index
///     index                   0      4  not used
///                             4      4  "RIA" and 1
///                             8     60  not used
///                             68+8k  4  page number of block k; 0 ends the table
///                             72+8k  4  length of block k in bytes; 128 or less ends the table
namespace R3DIndex {

inline constexpr std::uint64_t pageSize = 4096;
/// Files of this size or less have no index.
inline constexpr std::uint64_t smallestFile = 8192;
/// What is read of an index.
inline constexpr std::size_t mostBytes = 8192;

/// Where in the file the index lies. `tail` is what could be read of the file's last page. Nothing when it
/// does not tell, or tells a place from which there are less than 128 bytes.
std::optional<std::uint64_t> offset(ByteView tail, std::uint64_t fileSize);

/// Adds the index's blocks to those of the segments before. `index` is what could be read of it; nothing is
/// added when it is none. Blocks too short for a frame are passed over.
void appendBlocks(ByteView index, std::size_t segmentIndex, std::vector<AudioBlock>& blocks);

}  // namespace R3DIndex

}  // namespace orbinex
