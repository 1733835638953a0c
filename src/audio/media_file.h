#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orbinex {

/// An ordinary file, open for reading.
class MediaFile {
  public:
    MediaFile() = default;
    MediaFile(const MediaFile&) = delete;
    MediaFile& operator=(const MediaFile&) = delete;
    virtual ~MediaFile() = default;

    /// Its length in bytes as it is now; nothing on an error.
    [[nodiscard]] virtual std::optional<std::uint64_t> size() = 0;
    /// Reads from `offset` on as many bytes as there are and `bytes` has room for. Returns how many: 0 at the
    /// end, on an error, or when they are not at hand in time. No position is kept between reads.
    virtual std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) = 0;
};

}  // namespace orbinex
