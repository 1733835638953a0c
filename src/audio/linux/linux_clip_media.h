#pragma once

#include <functional>
#include <memory>
#include <string>

#include "audio/background/media_workers.h"
#include "audio/clip_media.h"

namespace orbinex {

/// The files of a Linux system. Files are opened where it is asked, which takes as long as it takes; what it
/// opens can then be read on the main thread, which is not held up for longer than the workers allow.
class LinuxClipMedia final : public ClipMedia {
  public:
    /// Finds the audio in a file; nothing when there is none that can be read. From any thread.
    using OpenAudio = std::function<std::unique_ptr<AudioFile>(std::unique_ptr<MediaFile>)>;

    LinuxClipMedia(OpenAudio openAudio, std::shared_ptr<MediaWorkers> workers);

    [[nodiscard]] bool exists(const std::string& path) override;
    [[nodiscard]] std::unique_ptr<MediaFile> openFile(const std::string& path) override;
    [[nodiscard]] std::unique_ptr<AudioFile> openAudioFile(const std::string& path) override;

  private:
    OpenAudio openAudio_;
    std::shared_ptr<MediaWorkers> workers_;
};

}  // namespace orbinex
