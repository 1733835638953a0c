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
    /// `frames` are whole ones, for which there is room.
    void add(ByteView frames) {
        const auto out = mono.subspan(produced, frames.size() / AudioBlock::frameSize);
        // Apart from the members, which the floats that are written might otherwise be for all the compiler
        // knows.
        float largest = peak;
        float squares = sumSquares;
        const std::uint8_t* frame = frames.data();
        for (float& mean : out) {
            const float a = sampleAt(frame);
            const float b = sampleAt(frame + AudioBlock::frameSize / 2);
            mean = (a + b) * 0.5F;
            squares += (a * a + b * b) * 0.5F;
            largest = std::max(largest, std::max(std::fabs(a), std::fabs(b)));
            frame += AudioBlock::frameSize;
        }
        produced += out.size();
        peak = largest;
        sumSquares = squares;
    }
    [[nodiscard]] MonoRead result() const {
        if (produced == 0) return {};
        return {produced, peak, std::sqrt(sumSquares / static_cast<float>(produced))};
    }
};

/// Reads up to `count` frames that lie one after the other from `place` on, as many at a time as the scratch
/// holds, until the file has no more. False when it had none, and when more are there but late: what follows
/// must not be heard in their place.
bool readRun(MediaFile& file, std::uint64_t place, std::size_t count, std::span<std::uint8_t> scratch,
             Reading& reading) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t wanted = std::min(count - done, scratch.size() / AudioBlock::frameSize);
        const auto bytes = scratch.first(wanted * AudioBlock::frameSize);
        const std::size_t got = file.read(place + done * AudioBlock::frameSize, bytes);
        const std::size_t frames = std::min(got, bytes.size()) / AudioBlock::frameSize;
        reading.add(bytes.first(frames * AudioBlock::frameSize));
        done += frames;
        if (frames == wanted) continue;
        const auto size = file.size();
        return done > 0 && size && *size < place + (done + 1) * AudioBlock::frameSize;
    }
    return done > 0;
}

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
    for (std::size_t i = blockAt(startSample); i < blocks_.size() && reading.left() > 0; ++i) {
        const AudioBlock& block = blocks_[i];
        // Behind a block that broke off, the next is read from its beginning.
        const std::int64_t position = startSample + static_cast<std::int64_t>(reading.produced);
        const auto offset =
            static_cast<std::uint64_t>(std::max<std::int64_t>(position - block.cumulativeStartSample, 0));
        const auto available = static_cast<std::uint64_t>(block.sampleFrameCount) - offset;
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(available, reading.left()));
        const auto place = block.fileOffset + AudioBlock::headerSize + offset * AudioBlock::frameSize;
        if (!readRun(*segmentHandles_[block.segmentIndex], place, wanted, rawScratch_, reading)) break;
    }
    return reading.result();
}

}  // namespace orbinex
