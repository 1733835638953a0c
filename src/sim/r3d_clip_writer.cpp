#include "sim/r3d_clip_writer.h"

#include <algorithm>
#include <string_view>

namespace orbinex {

namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::size_t blockHead = 128;
constexpr std::size_t indexHead = 68;

void fillPage(Bytes& bytes) {
    bytes.resize((bytes.size() + pageSize - 1) / pageSize * pageSize);
}
void put(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}
void putBigEndian(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}
void putSample(Bytes& bytes, std::int32_t sample) {
    const auto bits = static_cast<std::uint32_t>(sample);
    for (unsigned shift = 0; shift < 24; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
    // What is here is not part of the sample.
    bytes.push_back(0xEE);
}

}  // namespace

Bytes R3DClipWriter::block(std::span<const R3DFrame> frames) {
    Bytes bytes(blockHead, 0xAA);
    for (const auto& frame : frames) {
        putSample(bytes, frame.left);
        putSample(bytes, frame.right);
    }
    fillPage(bytes);
    return bytes;
}

Bytes R3DClipWriter::segment(const std::vector<std::vector<R3DFrame>>& blocks) {
    Bytes bytes;
    std::vector<Entry> entries;
    for (const auto& frames : blocks) {
        entries.push_back({static_cast<std::uint32_t>(bytes.size() / pageSize + 1),
                           static_cast<std::uint32_t>(blockHead + 8 * frames.size())});
        const auto more = block(frames);
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    return segment(bytes, entries);
}

Bytes R3DClipWriter::segment(const Bytes& blocks, const std::vector<Entry>& entries) {
    Bytes bytes(pageSize);
    bytes.insert(bytes.end(), blocks.begin(), blocks.end());
    fillPage(bytes);
    const auto indexPage = static_cast<std::uint32_t>(bytes.size() / pageSize);
    putBigEndian(bytes, 0);
    put(bytes, "RIA\x01");
    bytes.resize(bytes.size() + indexHead - 8);
    for (const auto& entry : entries) {
        putBigEndian(bytes, entry.page);
        putBigEndian(bytes, entry.length);
    }
    putBigEndian(bytes, 0);
    putBigEndian(bytes, 0);
    fillPage(bytes);
    bytes.resize(bytes.size() + 20);
    put(bytes, "rda\x01");
    putBigEndian(bytes, indexPage);
    bytes.resize(bytes.size() + 20);
    return bytes;
}

std::vector<Bytes> R3DClipWriter::clip(std::span<const R3DFrame> frames, std::size_t framesInBlock,
                                       std::size_t framesInSegment) {
    std::vector<Bytes> segments;
    while (!frames.empty()) {
        auto rest = frames.first(std::min(frames.size(), framesInSegment));
        frames = frames.subspan(rest.size());
        std::vector<std::vector<R3DFrame>> blocks;
        while (!rest.empty()) {
            const auto these = rest.first(std::min(rest.size(), framesInBlock));
            blocks.emplace_back(these.begin(), these.end());
            rest = rest.subspan(these.size());
        }
        segments.push_back(segment(blocks));
    }
    return segments;
}

}  // namespace orbinex
