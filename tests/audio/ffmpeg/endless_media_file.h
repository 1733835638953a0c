#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "audio/sndfile/disc_media_file.h"

namespace orbinex::test {

/// A disc with a file far larger than memory: after its beginning the same bytes again and again.
struct EndlessDisc {
    Bytes beginning;
    /// Not empty.
    Bytes repeated;
    std::uint64_t size = 0;
    std::uint64_t bytesRead = 0;
};

class EndlessMediaFile final : public MediaFile {
  public:
    explicit EndlessMediaFile(std::shared_ptr<EndlessDisc> disc) : disc_(std::move(disc)) {}

    [[nodiscard]] std::optional<std::uint64_t> size() override { return disc_->size; }
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        const auto left = disc_->size - std::min(offset, disc_->size);
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, bytes.size()));
        for (std::size_t done = 0; done < count;) {
            const auto piece = pieceAt(offset + done);
            const auto copied = std::min(piece.size(), count - done);
            std::copy_n(piece.begin(), copied, bytes.begin() + static_cast<std::ptrdiff_t>(done));
            done += copied;
        }
        disc_->bytesRead += count;
        return count;
    }

  private:
    [[nodiscard]] std::span<const std::uint8_t> pieceAt(std::uint64_t offset) const {
        const auto& [beginning, repeated, size, read] = *disc_;
        if (offset < beginning.size()) return std::span(beginning).subspan(offset);
        return std::span(repeated).subspan((offset - beginning.size()) % repeated.size());
    }

    std::shared_ptr<EndlessDisc> disc_;
};

}  // namespace orbinex::test
