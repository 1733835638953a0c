#pragma once

#include <memory>

#include "audio/audio_file.h"
#include "audio/media_file.h"

namespace orbinex {

/// The first audio stream of a media file, whatever its container: through libsndfile where that reads it,
/// which is exact and quickest, else through FFmpeg's libraries. The file's name plays no part. Nothing when
/// neither finds audio in it.
std::unique_ptr<AudioFile> openCodec(std::unique_ptr<MediaFile> media);

}  // namespace orbinex
