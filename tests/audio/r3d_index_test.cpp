#include "audio/r3d_index.h"

#include <set>

#include <gmock/gmock.h>

#include "audio/r3d_segments.h"

namespace orbinex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Paths = std::vector<std::string>;

TEST(R3DSegments, areTheNumberedSiblingsUpToTheFirstGap) {
    Paths forty;
    for (int i = 1; i <= 40; ++i)
        forty.push_back("/c/A_0" + std::string(i < 10 ? "0" : "") + std::to_string(i) + ".R3D");
    const struct {
        std::string path;
        Paths existing;
        Paths segments;
    } rows[] = {
        {"/c/A_001.R3D", {"/c/A_001.R3D", "/c/A_002.R3D", "/c/A_004.R3D"}, {"/c/A_001.R3D", "/c/A_002.R3D"}},
        // In small letters it begins a series too, whose files are looked for in capitals.
        {"/c/A_001.r3d", {"/c/A_001.r3d", "/c/A_001.R3D", "/c/A_002.R3D"}, {"/c/A_001.R3D", "/c/A_002.R3D"}},
        {"/c/A_001.r3d", {"/c/A_001.r3d", "/c/A_002.R3D"}, {"/c/A_001.r3d"}},
        {"/c/a_001.R3D", {"/c/a_001.R3D", "/c/A_002.R3D"}, {"/c/a_001.R3D"}},
        {"/c/A_002.R3D", {"/c/A_001.R3D", "/c/A_002.R3D", "/c/A_003.R3D"}, {"/c/A_002.R3D"}},
        {"/c/A.R3D", {"/c/A.R3D", "/c/A_002.R3D"}, {"/c/A.R3D"}},
        {"_001.R3D", {"_001.R3D", "_002.R3D"}, {"_001.R3D", "_002.R3D"}},
        {"01.R3D", {}, {"01.R3D"}},
        {"", {}, {""}},
        {"/c/A_001.R3D", {}, {"/c/A_001.R3D"}},
        {"/c/A_001.R3D", forty, Paths(forty.begin(), forty.begin() + 32)},
    };
    for (const auto& row : rows) {
        const std::set<std::string> existing(row.existing.begin(), row.existing.end());
        EXPECT_EQ(segmentPaths(row.path, [&](const std::string& path) { return existing.contains(path); }),
                  row.segments)
            << row.path;
    }
}

Bytes tailWith(std::size_t place, std::initializer_list<std::uint8_t> bytes, std::size_t size = 100) {
    Bytes tail(size, 7);
    std::ranges::copy(bytes, tail.begin() + static_cast<std::ptrdiff_t>(place));
    return tail;
}

TEST(R3DIndex, isFoundByTheFirstMarkInTheLastPage) {
    constexpr std::uint64_t size = 1 << 20;
    const struct {
        Bytes tail;
        std::uint64_t fileSize;
        std::optional<std::uint64_t> offset;
    } rows[] = {
        {tailWith(0, {'r', 'd', 'a', 1, 0, 0, 0, 3}), size, 12'288},
        {tailWith(50, {'r', 'd', 'a', 1, 0, 0, 1, 0}), (256 * 4096) + 128, 256 * 4096},
        {tailWith(50, {'r', 'd', 'a', 1, 0, 0, 1, 0}), (256 * 4096) + 127, std::nullopt},
        // At most nine bytes from the end; the last byte is never reached.
        {tailWith(91, {'r', 'd', 'a', 1, 0, 0, 0, 3}), size, 12'288},
        {tailWith(92, {'r', 'd', 'a', 1, 0, 0, 0, 3}), size, std::nullopt},
        {tailWith(10, {'r', 'd', 'a', 2, 0, 0, 0, 3}), size, std::nullopt},
        {tailWith(10, {'r', 'd', 'a', 1, 0, 0, 0, 0, 'r', 'd', 'a', 1, 0, 0, 0, 3}), size, std::nullopt},
        {tailWith(10, {'r', 'd', 'r', 'd', 'a', 1, 0, 0, 0, 2}), size, 8192},
        {tailWith(10, {'r', 'd', 'a', 1, 0xFF, 0xFF, 0xFF, 0xFF}), size, std::nullopt},
        {tailWith(10, {'r', 'd', 'a', 1, 0xFF, 0xFF, 0xFF, 0xFF}), UINT64_MAX, 0xFFFF'FFFFULL * 4096},
        {tailWith(0, {'r', 'd', 'a', 1, 0, 0, 0, 3}, 32), size, 12'288},
        {tailWith(0, {'r', 'd', 'a', 1, 0, 0, 0, 3}, 31), size, std::nullopt},
        {{}, size, std::nullopt},
    };
    for (const auto& row : rows) EXPECT_EQ(R3DIndex::offset(row.tail, row.fileSize), row.offset);
}

Bytes indexOf(std::initializer_list<std::pair<std::uint32_t, std::uint32_t>> entries) {
    Bytes bytes(68, 9);
    for (std::size_t i = 0; i < 4; ++i) bytes[4 + i] = static_cast<std::uint8_t>("RIA\x01"[i]);
    for (const auto& [page, length] : entries)
        for (const auto value : {page, length})
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    return bytes;
}

TEST(R3DIndex, listsTheBlocksUpToTheEndOfTheTable) {
    const auto blocksOf = [](const Bytes& index) {
        std::vector<AudioBlock> blocks{{0, 4096, 144, 2, 0}};
        R3DIndex::appendBlocks(index, 5, blocks);
        blocks.erase(blocks.begin());
        return blocks;
    };
    // 129 to 135 bytes have no frame and end nothing; 128 bytes and page 0 end the table.
    EXPECT_THAT(blocksOf(indexOf({{2, 136}, {3, 129}, {3, 135}, {4, 159}, {5, 128}, {6, 1000}})),
                ElementsAre(AudioBlock{5, 8192, 136, 1, 2}, AudioBlock{5, 16'384, 159, 3, 3}));
    EXPECT_THAT(blocksOf(indexOf({{2, 136}, {0, 136}, {3, 136}})),
                ElementsAre(AudioBlock{5, 8192, 136, 1, 2}));
    EXPECT_THAT(blocksOf(indexOf({{0xFFFF'FFFF, 0xFFFF'FFFF}})),
                ElementsAre(AudioBlock{5, 0xFFFF'FFFFULL * 4096, 0xFFFF'FFFF, 536'870'895, 2}));
    // An entry that is not whole is none.
    auto index = indexOf({{2, 136}, {3, 136}});
    index.pop_back();
    EXPECT_EQ(blocksOf(index).size(), 1U);
    index.resize(75);
    EXPECT_THAT(blocksOf(index), IsEmpty());
    index = indexOf({{2, 136}});
    index[7] = 2;
    EXPECT_THAT(blocksOf(index), IsEmpty());
    EXPECT_THAT(blocksOf({}), IsEmpty());
}

}  // namespace
}  // namespace orbinex
