#include "audio/ffmpeg/frame_samples.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cstdint>

namespace orbinex {

namespace {

AVSampleFormat packedFormat(const AVFrame& frame) {
    return av_get_packed_sample_fmt(static_cast<AVSampleFormat>(frame.format));
}

float toFloat(std::uint8_t sample) {
    return static_cast<float>(sample - 128) / 128.0F;
}
float toFloat(std::int32_t sample) {
    return static_cast<float>(sample) / 2147483648.0F;
}
float toFloat(float sample) {
    return sample;
}
float toFloat(double sample) {
    return static_cast<float>(sample);
}

template <class From, class To, class Convert>
void copyChannels(const AVFrame& frame, std::size_t from, std::size_t count, std::size_t channelCount, To* to,
                  Convert convert) {
    const bool isPlanar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)) != 0;
    const std::size_t stride = isPlanar ? 1 : static_cast<std::size_t>(frame.ch_layout.nb_channels);
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const auto* plane = reinterpret_cast<const From*>(frame.extended_data[isPlanar ? channel : 0]);
        const auto* source = plane + from * stride + (isPlanar ? 0 : channel);
        for (std::size_t i = 0; i < count; ++i) to[i * channelCount + channel] = convert(source[i * stride]);
    }
}

}  // namespace

SampleType sampleTypeOf(const AVFrame& frame) {
    return packedFormat(frame) == AV_SAMPLE_FMT_S16 ? SampleType::int16 : SampleType::float32;
}

bool hasKnownSamples(const AVFrame& frame) {
    switch (packedFormat(frame)) {
        case AV_SAMPLE_FMT_U8:
        case AV_SAMPLE_FMT_S16:
        case AV_SAMPLE_FMT_S32:
        case AV_SAMPLE_FMT_FLT:
        case AV_SAMPLE_FMT_DBL: return true;
        default: return false;
    }
}

void copySamples(const AVFrame& frame, std::size_t from, std::size_t count, int channelCount,
                 PCMBuffer& buffer, std::size_t to) {
    const auto channels = static_cast<std::size_t>(channelCount);
    const auto floats = [&]<class From>(From) {
        copyChannels<From>(frame, from, count, channels, buffer.floats().subspan(to * channels).data(),
                           [](From sample) { return toFloat(sample); });
    };
    switch (packedFormat(frame)) {
        case AV_SAMPLE_FMT_S16:
            copyChannels<std::int16_t>(frame, from, count, channels,
                                       buffer.shorts().subspan(to * channels).data(),
                                       [](std::int16_t sample) { return sample; });
            return;
        case AV_SAMPLE_FMT_U8: floats(std::uint8_t{}); return;
        case AV_SAMPLE_FMT_S32: floats(std::int32_t{}); return;
        case AV_SAMPLE_FMT_FLT: floats(float{}); return;
        case AV_SAMPLE_FMT_DBL: floats(double{}); return;
        default: return;
    }
}

void writeSilence(std::size_t count, int channelCount, PCMBuffer& buffer, std::size_t to) {
    const auto channels = static_cast<std::size_t>(channelCount);
    if (const auto shorts = buffer.shorts(); !shorts.empty())
        std::ranges::fill(shorts.subspan(to * channels, count * channels), std::int16_t{0});
    if (const auto floats = buffer.floats(); !floats.empty())
        std::ranges::fill(floats.subspan(to * channels, count * channels), 0.0F);
}

}  // namespace orbinex
