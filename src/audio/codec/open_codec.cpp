#include "audio/codec/open_codec.h"

#include <cstdio>

#include <dlfcn.h>

#include "audio/ffmpeg/ffmpeg_module.h"
#include "audio/sndfile/sndfile_audio_file.h"

namespace orbinex {

namespace {

/// Found through the search path that the program was linked with. It stays loaded.
FFmpegModule::Open* loadFFmpeg() {
    void* const module = ::dlopen(FFmpegModule::fileName, RTLD_NOW | RTLD_LOCAL);
    void* const function = module ? ::dlsym(module, FFmpegModule::functionName) : nullptr;
    if (!function)
        std::fprintf(stderr, "orbinex: media files that need FFmpeg are not read: %s\n", ::dlerror());
    return reinterpret_cast<FFmpegModule::Open*>(function);
}

std::unique_ptr<AudioFile> openWithFFmpeg(std::unique_ptr<MediaFile>& media) {
    static FFmpegModule::Open* const open = loadFFmpeg();
    return std::unique_ptr<AudioFile>(open ? open(media) : nullptr);
}

}  // namespace

std::unique_ptr<AudioFile> openCodec(std::unique_ptr<MediaFile> media) {
    if (auto file = SndfileAudioFile::open(media)) return file;
    return openWithFFmpeg(media);
}

}  // namespace orbinex
