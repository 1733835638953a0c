#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "audio/background/media_workers.h"
#include "audio/clip_source_opener.h"

namespace orbinex {

/// Opens clips' media in the background, and keeps what was asked for lately: the meters ask anew for
/// everything whenever they have dropped all their media.
class BackgroundSourceOpener final : public ClipSourceOpener {
  public:
    /// Media that are kept, or being opened, at a time. Further ones are not opened while all of these are
    /// in use.
    static constexpr std::size_t mostSources = 128;
    /// Media that were asked for within this time are in use.
    static constexpr std::chrono::seconds useLife{1};
    /// Media that nobody has asked for in this time are let go of.
    static constexpr std::chrono::seconds unaskedLife{10};
    /// After this time media are opened anew, in case that the file was replaced.
    static constexpr std::chrono::seconds sourceLife{60};
    /// The same for media that could not be opened.
    static constexpr std::chrono::seconds failureLife{2};

    BackgroundSourceOpener(std::shared_ptr<ClipMedia> media, std::shared_ptr<MediaWorkers> workers);
    /// Never waits for a file.
    ~BackgroundSourceOpener() override;

    std::optional<CachedAudioSource> open(const std::string& path) override;

  private:
    class Opening;
    struct Entry {
        std::shared_ptr<Opening> opening;
        /// What is shown until `opening` is done.
        std::optional<CachedAudioSource> before;
        std::chrono::nanoseconds lastAsked{0};
    };

    Entry begin(const std::string& path, std::chrono::nanoseconds now);
    void letGo(Entry& entry);
    void letGoOfUnasked(std::chrono::nanoseconds now);
    /// False when there is none that may go.
    bool makeRoom(std::chrono::nanoseconds now);

    std::shared_ptr<ClipMedia> media_;
    std::shared_ptr<MediaWorkers> workers_;
    std::unordered_map<std::string, Entry> entries_;
    std::chrono::nanoseconds lastTidied_{0};
};

}  // namespace orbinex
