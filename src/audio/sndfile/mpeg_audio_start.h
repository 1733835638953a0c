#pragma once

#include "audio/media_file.h"

namespace orbinex {

/// True when a file begins as MPEG audio does, with a frame or an ID3 tag before one, and its first frame
/// tells how long it is.
bool tellsLengthOfMpegAudio(MediaFile& media);

}  // namespace orbinex
