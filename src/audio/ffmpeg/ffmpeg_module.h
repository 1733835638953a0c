#pragma once

#include <memory>

#include "audio/audio_file.h"
#include "audio/media_file.h"

/// FFmpeg's libraries bring more than a hundred others, so that loading them takes longer than all else that
/// the program does when it starts. They are linked to a module of their own, which is loaded when the first
/// file needs it; this is what the two agree on.
namespace orbinex::FFmpegModule {

/// The file that is loaded, from the folder of the program's own libraries.
inline constexpr const char* fileName = "orbinex_ffmpeg.so";
/// The function that it exports.
inline constexpr const char* functionName = "orbinexOpenWithFFmpeg";
/// As FFmpegAudioFile::open(): the file, which becomes the caller's, or null, when the medium is left where
/// it is.
using Open = AudioFile*(std::unique_ptr<MediaFile>& media);

}  // namespace orbinex::FFmpegModule
