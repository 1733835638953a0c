#include "audio/linux/prompt_media_file.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "audio/background/chunk_store.h"

namespace orbinex {

namespace {

using Access = PosixMediaFile::Access;

/// Asked for at a time, which is so much that a track that plays needs more in few of its ticks.
constexpr std::size_t blockBytes = 131'072;
/// A file system whose page cache has failed so often to have what was just read is not asked for it again.
constexpr int mostDisappointments = 3;

/// `length` is not 0.
ChunkPlan::Range blocksOf(std::uint64_t offset, std::size_t length) {
    return {static_cast<std::int64_t>(offset / blockBytes),
            static_cast<std::int64_t>((offset + length - 1) / blockBytes)};
}

}  // namespace

/// The file's blocks: fetched into the page cache, or, where there is none to rely on, into memory of ours.
class PromptMediaFile::Blocks final : public ChunkStore {
  public:
    Blocks(std::unique_ptr<PosixMediaFile> file, Access access, std::shared_ptr<MediaWorkers> workers)
        : ChunkStore(std::move(workers), std::numeric_limits<Chunk>::max()),
          file_(std::move(file)),
          access_(access),
          knownSize_(file_->size().value_or(0)) {}

    PosixMediaFile& file() { return *file_; }
    /// Its size when it was last looked at.
    [[nodiscard]] std::uint64_t knownSize() const { return knownSize_; }
    /// From now on blocks are copied.
    void distrustPageCache() {
        access_ = Access::none;
        loseAll();
    }
    /// Copies what is at hand.
    std::size_t readCopies(std::uint64_t offset, std::span<std::uint8_t> bytes);

  private:
    bool fetch(const ChunkPlan::Fetch& fetch) override;
    bool copyBlock(Slot slot, std::uint64_t offset);

    const std::unique_ptr<PosixMediaFile> file_;
    std::atomic<Access> access_;
    std::atomic<std::uint64_t> knownSize_;
    /// One for each slot, as far as needed; with the bytes that the file had.
    std::array<std::unique_ptr<std::uint8_t[]>, ChunkPlan::slotCount> copies_;
    std::array<std::size_t, ChunkPlan::slotCount> lengths_{};
    std::vector<std::uint8_t> discarded_;
};

bool PromptMediaFile::Blocks::fetch(const ChunkPlan::Fetch& fetch) {
    const auto offset = static_cast<std::uint64_t>(fetch.chunk) * blockBytes;
    if (access_ == Access::none) return copyBlock(fetch.slot, offset);
    if (!fetch.isDemanded) {
        file_->prepare(offset, blockBytes);
    } else {
        discarded_.resize(blockBytes);
        file_->read(offset, discarded_);
    }
    return true;
}

bool PromptMediaFile::Blocks::copyBlock(Slot slot, std::uint64_t offset) {
    lengths_[slot] = 0;
    auto& copy = copies_[slot];
    if (!copy) copy = std::make_unique_for_overwrite<std::uint8_t[]>(blockBytes);
    lengths_[slot] = file_->read(offset, {copy.get(), blockBytes});
    knownSize_ = file_->size().value_or(0);
    return lengths_[slot] == blockBytes;
}

std::size_t PromptMediaFile::Blocks::readCopies(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    const Range blocks = blocksOf(offset, bytes.size());
    std::size_t done = 0;
    ChunkStore::read(blocks, [&](Chunk, Slot slot) {
        const auto begin = static_cast<std::size_t>((offset + done) % blockBytes);
        const auto wanted = std::min(bytes.size() - done, blockBytes - begin);
        const auto copied = std::min(wanted, std::max(lengths_[slot], begin) - begin);
        if (copied > 0) std::memcpy(bytes.data() + done, copies_[slot].get() + begin, copied);
        done += copied;
        return copied == wanted;
    });
    return done;
}

PromptMediaFile::PromptMediaFile(std::unique_ptr<PosixMediaFile> file, Access access,
                                 std::shared_ptr<MediaWorkers> workers)
    : access_(access),
      blocks_(std::make_shared<Blocks>(std::move(file), access, workers)),
      workers_(std::move(workers)) {}

PromptMediaFile::~PromptMediaFile() {
    blocks_->close();
    workers_->post(std::move(blocks_), Urgency::ordinary);
}

std::optional<std::uint64_t> PromptMediaFile::size() {
    // To ask a network may take long.
    if (access_ == Access::none && !workers_->isWorkerThread()) return blocks_->knownSize();
    return blocks_->file().size();
}

std::size_t PromptMediaFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    if (bytes.empty() || offset > std::numeric_limits<std::uint64_t>::max() - bytes.size()) return 0;
    if (access_ == Access::memory || workers_->isWorkerThread()) return blocks_->file().read(offset, bytes);
    return access_ == Access::pageCache ? readFromPageCache(offset, bytes)
                                        : blocks_->readCopies(offset, bytes);
}

std::size_t PromptMediaFile::readFromPageCache(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    auto& file = blocks_->file();
    std::size_t done = file.readAtHand(offset, bytes);
    if (done == bytes.size()) {
        disappointments_ = 0;
        // For what lies ahead.
        const auto blocks = blocksOf(offset, bytes.size());
        if (blocks.first != lastBlock_ || blocks.last != lastBlock_) blocks_->noteRead(blocks);
        lastBlock_ = blocks.last;
        return done;
    }
    const auto size = file.size();
    if (!size || offset + done >= *size) return done;
    if (!blocks_->bringAgain(blocksOf(offset + done, bytes.size() - done))) return done;
    done += file.readAtHand(offset + done, bytes.subspan(done));
    if (done < bytes.size() && offset + done < *size && ++disappointments_ >= mostDisappointments) {
        access_ = Access::none;
        blocks_->distrustPageCache();
    }
    return done;
}

}  // namespace orbinex
