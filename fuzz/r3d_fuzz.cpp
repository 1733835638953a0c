// The first 64 bytes are the end of a segment's last page, the last two of them how many bytes the file loses
// once it is open; the rest is what lies in the pages before, from the index on. The clip has two segments of
// the same bytes.

#include <algorithm>
#include <array>
#include <cmath>

#include "audio/r3d_audio_clip_reader.h"
#include "require.h"
#include "sim/simulated_clip_media.h"

using namespace orbinex;

namespace {

constexpr std::size_t tailSize = 64;
constexpr std::size_t page = 4096;
/// So that a block can be longer than what a reader holds at a time.
constexpr std::size_t fewestPages = 12;
constexpr std::size_t mostFrames = 5000;

Bytes segmentOf(ByteView input) {
    const auto tail = input.first(std::min(input.size(), tailSize));
    const auto pages = input.subspan(tail.size());
    Bytes bytes(page);
    bytes.insert(bytes.end(), pages.begin(), pages.end());
    // The samples differ from frame to frame.
    const std::size_t size = std::max(fewestPages * page, (bytes.size() + page - 1) / page * page);
    while (bytes.size() < size) bytes.push_back(static_cast<std::uint8_t>(bytes.size() * 167 >> 3));
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    return bytes;
}

std::size_t lossOf(ByteView input) {
    return input.size() < tailSize ? 0 : input[tailSize - 2] * std::size_t{256} + input[tailSize - 1];
}

std::vector<AudioBlock> blocksOf(ByteView segment) {
    std::vector<AudioBlock> blocks;
    const auto tail = segment.subspan((segment.size() - 1) / page * page);
    if (const auto index = R3DIndex::offset(tail, segment.size())) {
        const auto bytes = segment.subspan(static_cast<std::size_t>(*index));
        for (const std::size_t number : {0U, 1U})
            R3DIndex::appendBlocks(bytes.first(std::min(bytes.size(), R3DIndex::mostBytes)), number, blocks);
    }
    return blocks;
}

/// The frames from `start` on, mostFrames at most, one by one.
std::vector<float> plainRead(const std::vector<AudioBlock>& blocks, ByteView file, std::int64_t start) {
    const auto sample = [&](std::uint64_t at) {
        const int value = file[at] + file[at + 1] * 256 + file[at + 2] * 65'536;
        return static_cast<float>(value < 0x80'0000 ? value : value - 0x100'0000) / 8'388'608.0F;
    };
    std::vector<float> mono;
    mono.reserve(mostFrames);
    for (const auto& block : blocks) {
        if (block.cumulativeStartSample + block.sampleFrameCount <= start) continue;
        const std::size_t before = mono.size();
        const auto position = start + static_cast<std::int64_t>(mono.size());
        for (auto frame = std::max<std::int64_t>(position - block.cumulativeStartSample, 0);
             frame < block.sampleFrameCount && mono.size() < mostFrames; ++frame) {
            const auto at = block.fileOffset + 128 + static_cast<std::uint64_t>(frame) * 8;
            if (at + 8 > file.size()) break;
            mono.push_back((sample(at) + sample(at + 4)) * 0.5F);
        }
        if (mono.size() == before) break;
    }
    return mono;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView input(data, size);
    const auto segment = std::make_shared<Bytes>(segmentOf(input));
    SimulatedClipMedia media;
    media.files["/A_001.R3D"] = segment;
    media.files["/A_002.R3D"] = segment;
    const auto reader = R3DAudioClipReader::create("/A_001.R3D", media);
    REQUIRE(reader != nullptr);
    const auto blocks = blocksOf(*segment);
    const std::int64_t total = reader->totalSampleFrames();
    REQUIRE(total ==
            (blocks.empty() ? 0 : blocks.back().cumulativeStartSample + blocks.back().sampleFrameCount));
    segment->resize(segment->size() - std::min(segment->size(), lossOf(input)));
    std::array<float, mostFrames> buffer{};
    for (const std::int64_t start :
         {std::int64_t{0}, total / 2, total / 2 + 1, total - 1, total, std::int64_t{-1}}) {
        // A shorter read is the beginning of a longer one.
        const bool isInside = start >= 0 && start < total;
        const auto expected = isInside ? plainRead(blocks, *segment, start) : std::vector<float>();
        for (const std::size_t count : {std::size_t{1}, std::size_t{1024}, mostFrames}) {
            const auto read = reader->readMono(start, count, buffer);
            REQUIRE(read.framesRead == std::min(count, expected.size()));
            REQUIRE(std::equal(buffer.begin(), buffer.begin() + read.framesRead, expected.begin()));
            REQUIRE(read.peak >= 0 && read.peak <= 1);
            REQUIRE(std::isfinite(read.rms) && read.rms <= 1.0001F);
            REQUIRE(read.framesRead > 0 || read == MonoRead{});
        }
    }
    return 0;
}
