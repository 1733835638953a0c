#pragma once

#include <cstdint>

extern "C" {
#include <libavcodec/codec_id.h>
}

namespace orbinex {

/// How many frames a decoder must have decoded after a seek before its samples are those that it would have
/// given without one. `frameSize` is what one packet decodes to.
std::int64_t decoderPreRoll(AVCodecID codec, std::int64_t frameSize);

/// How many frames after the truth a packet's timestamp may be. Of a long Vorbis block that a short one
/// follows, what reads the container takes the length for that of two long ones.
std::int64_t timestampLateness(AVCodecID codec);

/// True when the first frame after a seek is not as long as it would have been without one.
bool cutsFirstFrameAfterSeek(AVCodecID codec);

/// What decoded frames begin at multiples of, from the first one on.
std::int64_t decoderStep(AVCodecID codec, int sampleRate, std::int64_t frameSize);

}  // namespace orbinex
