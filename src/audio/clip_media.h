#pragma once

#include <memory>
#include <string>

#include "audio/audio_file.h"
#include "audio/media_file.h"

namespace orbinex {

/// The files that clips are made of. A path is the text that the editor told, and may be anything.
class ClipMedia {
  public:
    ClipMedia() = default;
    ClipMedia(const ClipMedia&) = delete;
    ClipMedia& operator=(const ClipMedia&) = delete;
    virtual ~ClipMedia() = default;

    [[nodiscard]] virtual bool exists(const std::string& path) = 0;
    /// Nothing when there is no such file, it is not an ordinary one, or it may not be read.
    [[nodiscard]] virtual std::unique_ptr<MediaFile> openFile(const std::string& path) = 0;
    /// Nothing when openFile gives nothing or the file has no audio that can be read.
    [[nodiscard]] virtual std::unique_ptr<AudioFile> openAudioFile(const std::string& path) = 0;
};

}  // namespace orbinex
