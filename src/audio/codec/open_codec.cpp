#include "audio/codec/open_codec.h"

#include "audio/ffmpeg/ffmpeg_audio_file.h"
#include "audio/sndfile/sndfile_audio_file.h"

namespace orbinex {

std::unique_ptr<AudioFile> openCodec(std::unique_ptr<MediaFile> media) {
    if (auto file = SndfileAudioFile::open(media)) return file;
    return FFmpegAudioFile::open(media);
}

}  // namespace orbinex
