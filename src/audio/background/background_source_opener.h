#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "audio/background/media_workers.h"
#include "audio/clip_source_opener.h"

namespace orbinex {

/// Opens clips' media in the background, and keeps what is in use: the meters ask anew for everything
/// whenever they have dropped all their media.
class BackgroundSourceOpener final : public ClipSourceOpener {
  public:
    /// Media that are kept, or being opened, at a time. Further ones are not opened while all of these are
    /// in use.
    static constexpr std::size_t mostSources = 128;
    /// Openings at a time of media in one folder. Further up, where subfolders count, twice as many for each
    /// level, so that a disc that hangs does not take all the threads wherever its files are asked for.
    static constexpr std::size_t mostOpeningsInFolder = 4;
    static constexpr std::size_t mostOpeningsInTree = 24;
    static constexpr std::size_t mostOpenings = 48;
    /// Media that were asked for within this time are in use, and so are those that somebody holds.
    static constexpr std::chrono::seconds useLife{1};
    /// Media that nobody has used in this time are let go of.
    static constexpr std::chrono::seconds unusedLife{10};
    /// After this time media that could not be opened are tried again.
    static constexpr std::chrono::seconds failureLife{2};

    BackgroundSourceOpener(std::shared_ptr<ClipMedia> media, std::shared_ptr<MediaWorkers> workers);
    /// Never waits for a file.
    ~BackgroundSourceOpener() override;

    std::optional<CachedAudioSource> open(const std::string& path) override;

  private:
    class Opening;
    struct Entry {
        std::shared_ptr<Opening> opening;
        std::chrono::nanoseconds lastUse{0};
    };

    /// False while too many are being opened that lie near by.
    [[nodiscard]] bool mayBegin(std::string_view path) const;
    /// Media being opened that lie in the folder or below it.
    [[nodiscard]] std::size_t openingsIn(std::string_view folder) const;
    Entry begin(const std::string& path, std::chrono::nanoseconds now);
    void letGo(Entry& entry);
    void letGoOfUnused(std::chrono::nanoseconds now);
    /// False when there is none that may go.
    bool makeRoom(std::chrono::nanoseconds now);

    std::shared_ptr<ClipMedia> media_;
    std::shared_ptr<MediaWorkers> workers_;
    std::unordered_map<std::string, Entry> entries_;
    std::chrono::nanoseconds lastTidied_{0};
};

}  // namespace orbinex
