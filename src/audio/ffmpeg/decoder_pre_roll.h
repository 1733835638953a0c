#pragma once

#include <cstdint>

extern "C" {
#include <libavcodec/codec_id.h>
}

namespace orbinex {

/// How many frames a decoder must have decoded after a seek before its samples are those that it would have
/// given without one. `frameSize` is what one packet decodes to.
std::int64_t decoderPreRoll(AVCodecID codec, std::int64_t frameSize);

/// What decoded frames begin at multiples of, from the first one on.
std::int64_t decoderStep(AVCodecID codec, int sampleRate, std::int64_t frameSize);

}  // namespace orbinex
