#include "audio/background/chunked_audio_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <utility>

#include "audio/background/chunk_store.h"

namespace orbinex {

namespace {

/// What the file within is asked for at a time.
constexpr std::size_t pieceFrames = PCMBuffer::frameCapacity;
constexpr std::size_t mostPieces = 8;

/// A chunk lasts about 85 ms whatever the rate, so that one ahead is enough from a meter tick to the next.
std::size_t piecesPerChunk(double sampleRate) {
    if (sampleRate > 128'000) return mostPieces;
    return sampleRate > 64'000 ? 4 : 2;
}

std::span<std::byte> samplesOf(PCMBuffer& buffer, SampleType type) {
    return type == SampleType::int16 ? std::as_writable_bytes(buffer.shorts())
                                     : std::as_writable_bytes(buffer.floats());
}

}  // namespace

class ChunkedAudioFile::Decoding final : public ChunkStore {
  public:
    Decoding(std::unique_ptr<AudioFile> file, std::shared_ptr<MediaWorkers> workers)
        : ChunkStore(std::move(workers), chunkCount(*file)),
          type_(file->sampleType()),
          frameBytes_(static_cast<std::size_t>(file->channelCount()) *
                      (type_ == SampleType::int16 ? sizeof(std::int16_t) : sizeof(float))),
          totalFrames_(file->totalSampleFrames()),
          piecesPerChunk_(piecesPerChunk(file->sampleRate())),
          // Not filled, so that memory that is never needed is never taken.
          samples_(std::make_unique_for_overwrite<std::byte[]>(ChunkPlan::slotCount * chunkFrames() *
                                                               frameBytes_)),
          piece_(type_, file->channelCount()),
          file_(std::move(file)) {}

    /// As AudioFile::read, of a run that lies in the file and is not empty.
    std::size_t read(std::int64_t start, std::size_t count, std::span<std::byte> out);

  private:
    static Chunk chunkCount(const AudioFile& file) {
        const auto frames = static_cast<Chunk>(piecesPerChunk(file.sampleRate()) * pieceFrames);
        return (file.totalSampleFrames() - 1) / frames + 1;
    }
    [[nodiscard]] std::size_t chunkFrames() const { return piecesPerChunk_ * pieceFrames; }
    [[nodiscard]] std::byte* memory(Slot slot, std::size_t frame) const {
        return samples_.get() + (slot * chunkFrames() + frame) * frameBytes_;
    }
    bool fetch(const ChunkPlan::Fetch& fetch) override;
    /// Copies frames of a chunk from `first` on, up to the first that is missing. Returns how many.
    std::size_t copy(Slot slot, std::size_t first, std::size_t count, std::byte* out) const;

    const SampleType type_;
    const std::size_t frameBytes_;
    const std::int64_t totalFrames_;
    const std::size_t piecesPerChunk_;
    const std::unique_ptr<std::byte[]> samples_;
    /// Frames that the file gave of each piece.
    std::array<std::array<std::uint16_t, mostPieces>, ChunkPlan::slotCount> pieceLengths_{};
    // The background's:
    PCMBuffer piece_;
    const std::unique_ptr<AudioFile> file_;
};

std::size_t ChunkedAudioFile::Decoding::read(std::int64_t start, std::size_t count,
                                             std::span<std::byte> out) {
    const auto frames = static_cast<std::int64_t>(chunkFrames());
    const Range chunks{start / frames, (start + static_cast<std::int64_t>(count) - 1) / frames};
    std::size_t done = 0;
    ChunkStore::read(chunks, [&](Chunk chunk, Slot slot) {
        const auto first = static_cast<std::size_t>(start + static_cast<std::int64_t>(done) - chunk * frames);
        const auto wanted = std::min(count - done, chunkFrames() - first);
        const auto copied = copy(slot, first, wanted, out.data() + done * frameBytes_);
        done += copied;
        return copied == wanted;
    });
    return done;
}

bool ChunkedAudioFile::Decoding::fetch(const ChunkPlan::Fetch& fetch) {
    const auto begin = fetch.chunk * static_cast<std::int64_t>(chunkFrames());
    const auto samples = samplesOf(piece_, type_);
    pieceLengths_[fetch.slot].fill(0);
    bool isComplete = true;
    for (std::size_t piece = 0; piece < piecesPerChunk_; ++piece) {
        const auto start = begin + static_cast<std::int64_t>(piece * pieceFrames);
        const auto left = static_cast<std::uint64_t>(std::max<std::int64_t>(totalFrames_ - start, 0));
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, pieceFrames));
        const auto length = wanted == 0 ? 0 : std::min(file_->read(start, wanted, piece_), wanted);
        std::memcpy(memory(fetch.slot, piece * pieceFrames), samples.data(), length * frameBytes_);
        pieceLengths_[fetch.slot][piece] = static_cast<std::uint16_t>(length);
        isComplete &= length == wanted;
    }
    return isComplete;
}

std::size_t ChunkedAudioFile::Decoding::copy(Slot slot, std::size_t first, std::size_t count,
                                             std::byte* out) const {
    std::size_t done = 0;
    while (done < count) {
        const auto piece = (first + done) / pieceFrames;
        const auto offset = (first + done) % pieceFrames;
        const std::size_t length = pieceLengths_[slot][piece];
        if (offset >= length) break;
        const auto copied = std::min(count - done, length - offset);
        std::memcpy(out + done * frameBytes_, memory(slot, first + done), copied * frameBytes_);
        done += copied;
        if (length < pieceFrames) break;
    }
    return done;
}

ChunkedAudioFile::ChunkedAudioFile(std::unique_ptr<AudioFile> file, std::shared_ptr<MediaWorkers> workers)
    : sampleRate_(file->sampleRate()),
      totalSampleFrames_(file->totalSampleFrames()),
      channelCount_(file->channelCount()),
      sampleType_(file->sampleType()),
      decoding_(std::make_shared<Decoding>(std::move(file), workers)),
      workers_(std::move(workers)) {}

ChunkedAudioFile::~ChunkedAudioFile() {
    decoding_->close();
    workers_->post(std::move(decoding_), Urgency::ordinary);
}

std::size_t ChunkedAudioFile::read(std::int64_t start, std::size_t count, PCMBuffer& buffer) {
    if (start < 0 || start >= totalSampleFrames_) return 0;
    const auto left = static_cast<std::uint64_t>(totalSampleFrames_ - start);
    count = static_cast<std::size_t>(std::min<std::uint64_t>({left, PCMBuffer::frameCapacity, count}));
    if (count == 0) return 0;
    return decoding_->read(start, count, samplesOf(buffer, sampleType_));
}

}  // namespace orbinex
