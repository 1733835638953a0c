#pragma once

#include <memory>
#include <optional>
#include <string>

#include "audio/media_file.h"

namespace orbinex {

/// An ordinary file of the system. Every call takes as long as the disk takes, unless it says otherwise.
/// From any thread, also from several at a time.
class PosixMediaFile final : public MediaFile {
  public:
    /// How its bytes are had without waiting for a disk.
    enum class Access : std::uint8_t {
        /// They are always in memory.
        memory,
        /// readAtHand gives those that are.
        pageCache,
        /// Not at all: a network's or a program's file system, or one that does not say.
        none,
    };

    /// Nothing when the path leads to no file, or to something else: a folder, a device, a pipe, a socket, or
    /// one of the kernel's files that tell of the system.
    static std::unique_ptr<PosixMediaFile> open(const std::string& path);
    ~PosixMediaFile() override;

    [[nodiscard]] std::optional<std::uint64_t> size() override;
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override;

    [[nodiscard]] Access access() const { return access_; }
    /// As read, but only the bytes that are in memory; returns at once.
    std::size_t readAtHand(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    /// Has the system bring these bytes to memory. Does not wait for them.
    void prepare(std::uint64_t offset, std::uint64_t length) const;

  private:
    explicit PosixMediaFile(int descriptor);

    int descriptor_;
    Access access_;
};

}  // namespace orbinex
