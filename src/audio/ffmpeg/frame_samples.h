#pragma once

#include <cstddef>

#include "audio/pcm_buffer.h"

struct AVFrame;

namespace orbinex {

/// How the samples of a decoded frame are handed over: 16-bit ones as they are, all others as floats.
SampleType sampleTypeOf(const AVFrame& frame);

/// True when this is a kind of sample that copySamples knows.
bool hasKnownSamples(const AVFrame& frame);

/// Copies the first `channelCount` channels of `count` frames of samples, from `from` on, to the buffer's
/// `to`. The decoded frame must have that many, and the buffer room.
void copySamples(const AVFrame& frame, std::size_t from, std::size_t count, int channelCount,
                 PCMBuffer& buffer, std::size_t to);

/// Writes `count` frames of silence to the buffer's `to`.
void writeSilence(std::size_t count, int channelCount, PCMBuffer& buffer, std::size_t to);

}  // namespace orbinex
