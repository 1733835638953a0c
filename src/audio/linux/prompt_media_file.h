#pragma once

#include <cstdint>
#include <memory>

#include "audio/background/media_workers.h"
#include "audio/linux/posix_media_file.h"

namespace orbinex {

/// A file that can be read on the main thread. What is in memory is read at once; what is not is fetched in
/// the background, together with what lies ahead in the direction of play, and waited for only as long as the
/// workers allow. What is late is missing from a read, and there the next time. On a background thread it is
/// read as any file.
class PromptMediaFile final : public MediaFile {
  public:
    /// Treats the file as one with this access, which may be less than it has.
    PromptMediaFile(std::unique_ptr<PosixMediaFile> file, PosixMediaFile::Access access,
                    std::shared_ptr<MediaWorkers> workers);
    /// Never waits for the file.
    ~PromptMediaFile() override;

    [[nodiscard]] std::optional<std::uint64_t> size() override;
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override;

  private:
    class Blocks;

    std::size_t readFromPageCache(std::uint64_t offset, std::span<std::uint8_t> bytes);

    PosixMediaFile::Access access_;
    std::shared_ptr<Blocks> blocks_;
    std::shared_ptr<MediaWorkers> workers_;
    /// Block that was read last, and how often in a row the page cache had not what was fetched into it.
    std::int64_t lastBlock_ = -1;
    int disappointments_ = 0;
};

}  // namespace orbinex
