#include "audio/r3d_index.h"

#include <algorithm>
#include <array>

namespace orbinex {

namespace {

constexpr std::array<std::uint8_t, 4> tailMark{'r', 'd', 'a', 1};
constexpr std::array<std::uint8_t, 4> indexMark{'R', 'I', 'A', 1};
constexpr std::size_t smallestTail = 32;
constexpr std::size_t indexMarkOffset = 4;
constexpr std::size_t entriesOffset = 68;
constexpr std::size_t entrySize = 8;
constexpr std::uint64_t smallestIndex = 128;

std::uint32_t bigEndian(ByteView bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8 | bytes[offset + i];
    return value;
}

}  // namespace

std::optional<std::uint64_t> R3DIndex::offset(ByteView tail, std::uint64_t fileSize) {
    if (tail.size() < smallestTail) return std::nullopt;
    // The number after the mark lies before the tail's last byte.
    const auto searched = tail.first(tail.size() - 9 + tailMark.size());
    const auto mark = std::search(searched.begin(), searched.end(), tailMark.begin(), tailMark.end());
    if (mark == searched.end()) return std::nullopt;
    const auto place = static_cast<std::size_t>(mark - searched.begin());
    const std::uint64_t page = bigEndian(tail, place + tailMark.size());
    if (page == 0 || fileSize < page * pageSize + smallestIndex) return std::nullopt;
    return page * pageSize;
}

void R3DIndex::appendBlocks(ByteView index, std::size_t segmentIndex, std::vector<AudioBlock>& blocks) {
    if (index.size() < entriesOffset + entrySize) return;
    if (!std::ranges::equal(index.subspan(indexMarkOffset, indexMark.size()), indexMark)) return;
    for (std::size_t entry = entriesOffset; entry + entrySize <= index.size(); entry += entrySize) {
        const std::uint64_t page = bigEndian(index, entry);
        const std::int64_t length = bigEndian(index, entry + 4);
        constexpr auto header = static_cast<std::int64_t>(AudioBlock::headerSize);
        if (page == 0 || length <= header) return;
        const std::int64_t frames = (length - header) / static_cast<std::int64_t>(AudioBlock::frameSize);
        if (frames == 0) continue;
        const std::int64_t start =
            blocks.empty() ? 0 : blocks.back().cumulativeStartSample + blocks.back().sampleFrameCount;
        blocks.push_back({segmentIndex, page * pageSize, length, frames, start});
    }
}

}  // namespace orbinex
