#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "audio/media_file.h"

namespace orbinex::test {

using FileBytes = std::vector<std::uint8_t>;

inline FileBytes bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A disc that holds one file, and may go and come back.
struct Disc {
    FileBytes bytes;
    bool isThere = true;
    /// How many more reads it gives before it goes; below 0 it stays.
    int readsLeft = -1;
    std::uint64_t bytesRead = 0;
};

class MemoryMediaFile final : public MediaFile {
  public:
    explicit MemoryMediaFile(FileBytes bytes) : disc_(std::make_shared<Disc>()) {
        disc_->bytes = std::move(bytes);
    }
    explicit MemoryMediaFile(std::shared_ptr<Disc> disc) : disc_(std::move(disc)) {}

    [[nodiscard]] std::optional<std::uint64_t> size() override {
        return disc_->isThere ? std::optional<std::uint64_t>(disc_->bytes.size()) : std::nullopt;
    }
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        if (disc_->readsLeft == 0) disc_->isThere = false;
        if (disc_->readsLeft > 0) --disc_->readsLeft;
        if (!disc_->isThere || offset >= disc_->bytes.size()) return 0;
        const auto count = std::min<std::uint64_t>(bytes.size(), disc_->bytes.size() - offset);
        std::copy_n(disc_->bytes.begin() + static_cast<std::ptrdiff_t>(offset), count, bytes.begin());
        disc_->bytesRead += count;
        return static_cast<std::size_t>(count);
    }

  private:
    std::shared_ptr<Disc> disc_;
};

inline std::unique_ptr<MediaFile> inMemory(FileBytes bytes) {
    return std::make_unique<MemoryMediaFile>(std::move(bytes));
}

}  // namespace orbinex::test
