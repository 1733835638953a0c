#include "audio/background/background_source_opener.h"

#include <algorithm>
#include <atomic>
#include <type_traits>
#include <utility>

namespace orbinex {

/// The opening of one file, and what came of it.
class BackgroundSourceOpener::Opening final : public MediaTask {
  public:
    using Time = std::chrono::nanoseconds;

    Opening(std::string path, std::shared_ptr<ClipMedia> media, std::shared_ptr<MediaWorkers> workers)
        : path_(std::move(path)), media_(std::move(media)), workers_(std::move(workers)) {}

    bool run() override {
        if (isDone_ || isUnwanted_) return false;
        try {
            source_ = openAudioSource(path_, *media_);
        } catch (...) {
            // A file that lies may ask for more memory than there is.
            source_ = UnsupportedSource{};
        }
        endTime_ = workers_->now();
        isDone_.store(true, std::memory_order_release);
        return false;
    }

    void giveUp() { isUnwanted_ = true; }
    [[nodiscard]] bool isDone() const { return isDone_.load(std::memory_order_acquire); }
    // Once it is done:
    [[nodiscard]] const CachedAudioSource& source() const { return source_; }
    [[nodiscard]] bool isOutdatedFailure(Time now) const {
        return std::holds_alternative<UnsupportedSource>(source_) && now - endTime_ > failureLife;
    }
    [[nodiscard]] bool isHeld() const {
        return std::visit(
            []<class Reader>(const Reader& reader) {
                if constexpr (std::is_same_v<Reader, UnsupportedSource>) {
                    return false;
                } else {
                    return reader.use_count() > 1;
                }
            },
            source_);
    }

  private:
    const std::string path_;
    const std::shared_ptr<ClipMedia> media_;
    const std::shared_ptr<MediaWorkers> workers_;
    CachedAudioSource source_;
    Time endTime_{0};
    std::atomic<bool> isDone_ = false;
    std::atomic<bool> isUnwanted_ = false;
};

BackgroundSourceOpener::BackgroundSourceOpener(std::shared_ptr<ClipMedia> media,
                                               std::shared_ptr<MediaWorkers> workers)
    : media_(std::move(media)), workers_(std::move(workers)) {}

BackgroundSourceOpener::~BackgroundSourceOpener() {
    for (auto& [path, entry] : entries_) letGo(entry);
}

std::optional<CachedAudioSource> BackgroundSourceOpener::open(const std::string& path) {
    const auto now = workers_->now();
    letGoOfUnused(now);
    auto found = entries_.find(path);
    bool isNew = found == entries_.end();
    if (isNew) {
        if (!mayBegin(path) || !makeRoom(now)) return std::nullopt;
        found = entries_.emplace(path, begin(path, now)).first;
    }
    Entry& entry = found->second;
    entry.lastUse = now;
    if (entry.opening->isDone() && entry.opening->isOutdatedFailure(now) && mayBegin(path)) {
        letGo(entry);
        entry = begin(path, now);
        isNew = true;
    }
    // Only once for each: one that is slow must not take from the others the time that may be waited.
    if (isNew) workers_->waitFor([opening = entry.opening.get()] { return opening->isDone(); });
    if (entry.opening->isDone()) return entry.opening->source();
    // Also for the workers to notice if the thread that is at it hangs.
    workers_->post(entry.opening, Urgency::ordinary);
    return std::nullopt;
}

bool BackgroundSourceOpener::mayBegin(std::string_view path) const {
    if (openingsIn("") >= mostOpenings) return false;
    auto most = mostOpeningsInFolder;
    for (auto end = path.rfind('/'); end != path.npos && end > 0; end = path.rfind('/', end - 1)) {
        if (openingsIn(path.substr(0, end + 1)) >= most) return false;
        most = std::min(2 * most, mostOpeningsInTree);
    }
    return true;
}

std::size_t BackgroundSourceOpener::openingsIn(std::string_view folder) const {
    return static_cast<std::size_t>(std::ranges::count_if(entries_, [folder](const auto& item) {
        return !item.second.opening->isDone() && item.first.starts_with(folder);
    }));
}

BackgroundSourceOpener::Entry BackgroundSourceOpener::begin(const std::string& path,
                                                            std::chrono::nanoseconds now) {
    auto opening = std::make_shared<Opening>(path, media_, workers_);
    workers_->post(opening, Urgency::ordinary);
    return {std::move(opening), now};
}

void BackgroundSourceOpener::letGo(Entry& entry) {
    entry.opening->giveUp();
    workers_->post(std::move(entry.opening), Urgency::ordinary);
}

void BackgroundSourceOpener::letGoOfUnused(std::chrono::nanoseconds now) {
    if (now - lastTidied_ < useLife) return;
    lastTidied_ = now;
    for (auto item = entries_.begin(); item != entries_.end();) {
        Entry& entry = item->second;
        // What is still being opened stays: begun again, it would hang in one more thread.
        if (!entry.opening->isDone() || entry.opening->isHeld()) entry.lastUse = now;
        if (now - entry.lastUse <= unusedLife) {
            ++item;
        } else {
            letGo(entry);
            item = entries_.erase(item);
        }
    }
}

bool BackgroundSourceOpener::makeRoom(std::chrono::nanoseconds now) {
    if (entries_.size() < mostSources) return true;
    auto oldest = entries_.end();
    for (auto item = entries_.begin(); item != entries_.end(); ++item) {
        const Entry& entry = item->second;
        if (!entry.opening->isDone() || entry.opening->isHeld() || now - entry.lastUse <= useLife) continue;
        if (oldest == entries_.end() || entry.lastUse < oldest->second.lastUse) oldest = item;
    }
    if (oldest == entries_.end()) return false;
    letGo(oldest->second);
    entries_.erase(oldest);
    return true;
}

}  // namespace orbinex
