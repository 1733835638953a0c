#pragma once

#include <optional>
#include <string>

#include "audio/cached_audio_source.h"
#include "audio/clip_media.h"

namespace orbinex {

/// Opens clips' media for the meters.
class ClipSourceOpener {
  public:
    ClipSourceOpener() = default;
    ClipSourceOpener(const ClipSourceOpener&) = delete;
    ClipSourceOpener& operator=(const ClipSourceOpener&) = delete;
    virtual ~ClipSourceOpener() = default;

    /// The source of the media at `path`, which is not empty. Nothing while it is still being opened: ask
    /// again.
    virtual std::optional<CachedAudioSource> open(const std::string& path) = 0;
};

/// Opens the media at `path`, by its extension: R3D clips ourselves, all else as audio files. Takes as long
/// as the files take.
CachedAudioSource openAudioSource(const std::string& path, ClipMedia& media);

/// Opens where it is asked.
class DirectSourceOpener final : public ClipSourceOpener {
  public:
    /// `media` must outlive it.
    explicit DirectSourceOpener(ClipMedia& media) : media_(media) {}
    std::optional<CachedAudioSource> open(const std::string& path) override {
        return openAudioSource(path, media_);
    }

  private:
    ClipMedia& media_;
};

}  // namespace orbinex
