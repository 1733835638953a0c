#include "audio/linux/linux_clip_media.h"

#include <utility>

#include <unistd.h>

#include "audio/background/chunked_audio_file.h"
#include "audio/linux/prompt_media_file.h"

namespace orbinex {

LinuxClipMedia::LinuxClipMedia(OpenAudio openAudio, std::shared_ptr<MediaWorkers> workers)
    : openAudio_(std::move(openAudio)), workers_(std::move(workers)) {}

bool LinuxClipMedia::exists(const std::string& path) {
    return path.find('\0') == std::string::npos && ::access(path.c_str(), F_OK) == 0;
}

std::unique_ptr<MediaFile> LinuxClipMedia::openFile(const std::string& path) {
    auto file = PosixMediaFile::open(path);
    if (!file) return nullptr;
    const auto access = file->access();
    return std::make_unique<PromptMediaFile>(std::move(file), access, workers_);
}

std::unique_ptr<AudioFile> LinuxClipMedia::openAudioFile(const std::string& path) {
    auto file = openFile(path);
    if (!file) return nullptr;
    auto audio = openAudio_(std::move(file));
    if (!audio || !audio->prefersReadingOn()) return audio;
    return std::make_unique<ChunkedAudioFile>(std::move(audio), workers_);
}

}  // namespace orbinex
