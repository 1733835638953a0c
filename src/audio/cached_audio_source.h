#pragma once

#include <memory>
#include <variant>

#include "audio/av_audio_clip_reader.h"
#include "audio/r3d_audio_clip_reader.h"

namespace orbinex {

/// Media that cannot be measured.
struct UnsupportedSource {
    friend bool operator==(UnsupportedSource, UnsupportedSource) = default;
};

/// Where a clip's samples come from. Copies share the reader.
using CachedAudioSource =
    std::variant<UnsupportedSource, std::shared_ptr<AVAudioClipReader>, std::shared_ptr<R3DAudioClipReader>>;

}  // namespace orbinex
