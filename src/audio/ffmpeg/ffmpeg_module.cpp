#include "audio/ffmpeg/ffmpeg_module.h"

#include "audio/ffmpeg/ffmpeg_audio_file.h"

extern "C" [[gnu::visibility("default")]] orbinex::FFmpegModule::Open orbinexOpenWithFFmpeg;

orbinex::AudioFile* orbinexOpenWithFFmpeg(std::unique_ptr<orbinex::MediaFile>& media) {
    return orbinex::FFmpegAudioFile::open(media).release();
}
