#include "audio/r3d_audio_clip_reader.h"

#include <algorithm>
#include <cmath>

#include "audio/r3d_segments.h"

namespace orbinex {

namespace {

constexpr float fullScale = 0x1p23F;

float sampleAt(const std::uint8_t* bytes) {
    const auto raw = static_cast<std::uint32_t>(bytes[0]) << 8 | static_cast<std::uint32_t>(bytes[1]) << 16 |
                     static_cast<std::uint32_t>(bytes[2]) << 24;
    return static_cast<float>(static_cast<std::int32_t>(raw) >> 8) / fullScale;
}

/// What has been read so far.
struct Reading {
    std::span<float> mono;
    std::size_t produced = 0;
    float peak = 0;
    float sumSquares = 0;

    [[nodiscard]] std::size_t left() const { return mono.size() - produced; }
    void add(ByteView frames) {
        for (; frames.size() >= AudioBlock::frameSize; frames = frames.subspan(AudioBlock::frameSize)) {
            const float a = sampleAt(frames.data());
            const float b = sampleAt(frames.data() + AudioBlock::frameSize / 2);
            mono[produced++] = (a + b) * 0.5F;
            sumSquares += (a * a + b * b) * 0.5F;
            peak = std::max({peak, std::fabs(a), std::fabs(b)});
        }
    }
    [[nodiscard]] MonoRead result() const {
        if (produced == 0) return {};
        return {produced, peak, std::sqrt(sumSquares / static_cast<float>(produced))};
    }
};

}  // namespace

std::shared_ptr<R3DAudioClipReader> R3DAudioClipReader::create(const std::string& path, ClipMedia& media) {
    if (!media.exists(path)) return nullptr;
    auto reader = std::make_shared<R3DAudioClipReader>();
    for (const auto& segment :
         segmentPaths(path, [&](const std::string& file) { return media.exists(file); }))
        if (auto handle = media.openFile(segment)) reader->addSegment(std::move(handle));
    if (!reader->blocks_.empty()) {
        const auto& last = reader->blocks_.back();
        reader->totalSampleFrames_ = last.cumulativeStartSample + last.sampleFrameCount;
    }
    return reader;
}

void R3DAudioClipReader::addSegment(std::unique_ptr<MediaFile> segment) {
    auto& file = *segmentHandles_.emplace_back(std::move(segment));
    const auto size = file.size();
    if (!size || *size <= R3DIndex::smallestFile) return;
    const auto read = [&](std::uint64_t offset, std::size_t count) {
        const auto bytes = std::span(rawScratch_).first(count);
        return ByteView(bytes.first(std::min(file.read(offset, bytes), count)));
    };
    const std::uint64_t lastPage = (*size - 1) / R3DIndex::pageSize * R3DIndex::pageSize;
    const auto index = R3DIndex::offset(read(lastPage, R3DIndex::pageSize), *size);
    if (index) R3DIndex::appendBlocks(read(*index, R3DIndex::mostBytes), segmentHandles_.size() - 1, blocks_);
}

std::size_t R3DAudioClipReader::blockAt(std::int64_t sample) const {
    const auto next = std::ranges::upper_bound(blocks_, sample, {}, &AudioBlock::cumulativeStartSample);
    return static_cast<std::size_t>(next - blocks_.begin()) - 1;
}

MonoRead R3DAudioClipReader::readMono(std::int64_t startSample, std::size_t maxFrames,
                                      std::span<float> buffer) {
    if (startSample < 0 || startSample >= totalSampleFrames_) return {};
    const auto inClip = static_cast<std::uint64_t>(totalSampleFrames_ - startSample);
    Reading reading{
        buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>({inClip, buffer.size(), maxFrames})))};
    std::size_t block = blockAt(startSample);
    std::int64_t position = startSample;
    while (reading.left() > 0 && block < blocks_.size()) {
        const auto& [segment, fileOffset, length, frameCount, start] = blocks_[block];
        const std::int64_t offset = std::max<std::int64_t>(position - start, 0);
        const auto wanted = static_cast<std::size_t>(
            std::min<std::uint64_t>({static_cast<std::uint64_t>(frameCount - offset), reading.left(),
                                     rawScratch_.size() / AudioBlock::frameSize}));
        const auto bytes = std::span(rawScratch_).first(wanted * AudioBlock::frameSize);
        const std::uint64_t place =
            fileOffset + AudioBlock::headerSize + static_cast<std::uint64_t>(offset) * AudioBlock::frameSize;
        const std::size_t got = std::min(segmentHandles_[segment]->read(place, bytes), bytes.size());
        const std::size_t frames = got / AudioBlock::frameSize;
        if (frames == 0) break;
        reading.add(ByteView(bytes.first(frames * AudioBlock::frameSize)));
        position += static_cast<std::int64_t>(frames);
        // A block larger than the scratch is read on; one that broke off is not.
        if (frames < wanted || offset + static_cast<std::int64_t>(frames) >= frameCount) ++block;
    }
    return reading.result();
}

}  // namespace orbinex
