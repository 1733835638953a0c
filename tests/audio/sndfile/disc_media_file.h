#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

#include "sim/simulated_clip_media.h"

namespace orbinex::test {

inline Bytes bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A disc that holds one file, and may go and come back.
struct Disc {
    Bytes bytes;
    bool isThere = true;
    /// How many more reads it gives before it goes; below 0 it stays.
    int readsLeft = -1;
};

class DiscMediaFile final : public MediaFile {
  public:
    explicit DiscMediaFile(std::shared_ptr<Disc> disc)
        : disc_(std::move(disc)), file_(std::shared_ptr<const Bytes>(disc_, &disc_->bytes)) {}

    [[nodiscard]] std::optional<std::uint64_t> size() override {
        return disc_->isThere ? file_.size() : std::nullopt;
    }
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        if (disc_->readsLeft == 0) disc_->isThere = false;
        if (disc_->readsLeft > 0) --disc_->readsLeft;
        return disc_->isThere ? file_.read(offset, bytes) : 0;
    }

  private:
    std::shared_ptr<Disc> disc_;
    MemoryMediaFile file_;
};

inline std::unique_ptr<MediaFile> inMemory(Bytes bytes) {
    return std::make_unique<MemoryMediaFile>(std::make_shared<Bytes>(std::move(bytes)));
}

}  // namespace orbinex::test
