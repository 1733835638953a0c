#include "audio/ffmpeg/decoder_pre_roll.h"

extern "C" {
#include <libavcodec/codec_desc.h>
}

namespace orbinex {

namespace {

/// In frames.
constexpr std::int64_t longestVorbisBlock = 8192;

bool isLossless(AVCodecID codec) {
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec);
    return descriptor && (descriptor->props & AV_CODEC_PROP_LOSSY) == 0;
}

}  // namespace

std::int64_t decoderPreRoll(AVCodecID codec, std::int64_t frameSize) {
    switch (codec) {
        // Each block is added to the end of the one before.
        case AV_CODEC_ID_AAC:
        case AV_CODEC_ID_AC3:
        case AV_CODEC_ID_EAC3: return 2 * frameSize;
        // The same, whatever the length of the first: two of the longest, which last half of a block each.
        case AV_CODEC_ID_VORBIS: return longestVorbisBlock;
        // A frame's bits may begin several frames earlier, the more the lower the bit rate.
        case AV_CODEC_ID_MP1:
        case AV_CODEC_ID_MP2:
        case AV_CODEC_ID_MP3: return 9216;
        // Energies are predicted from the frames before and fade from memory slowly.
        case AV_CODEC_ID_OPUS: return 48000;
        default: return isLossless(codec) ? 0 : 4 * frameSize;
    }
}

std::int64_t timestampLateness(AVCodecID codec) {
    return codec == AV_CODEC_ID_VORBIS ? longestVorbisBlock / 4 : 0;
}

bool cutsFirstFrameAfterSeek(AVCodecID codec) {
    return codec == AV_CODEC_ID_VORBIS;
}

std::int64_t decoderStep(AVCodecID codec, int sampleRate, std::int64_t frameSize) {
    switch (codec) {
        // Packets last multiples of 2.5 ms.
        case AV_CODEC_ID_OPUS: return sampleRate / 400;
        // Short and long blocks, overlapping: a quarter of the shortest in use.
        case AV_CODEC_ID_VORBIS: return 64;
        default: return frameSize;
    }
}

}  // namespace orbinex
