#include "audio/sndfile/mpeg_audio_start.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orbinex {

namespace {

/// More than the part of a first frame that encoders' notes begin in: the frame's header, its checksum and 32
/// bytes of side information.
constexpr std::size_t noteEnd = 48;

/// Where the audio begins: behind an ID3 tag, whose length is in four times seven bits.
std::uint64_t audioOffset(MediaFile& media) {
    std::array<std::uint8_t, 10> tag{};
    if (media.read(0, tag) < tag.size() || tag[0] != 'I' || tag[1] != 'D' || tag[2] != '3') return 0;
    std::uint64_t length = 0;
    for (std::size_t i = 6; i < 10; ++i) length = length << 7U | (tag[i] & 0x7FU);
    return tag.size() + length;
}

}  // namespace

bool tellsLengthOfMpegAudio(MediaFile& media) {
    std::array<std::uint8_t, noteEnd> frame{};
    const auto size = std::min(media.read(audioOffset(media), frame), frame.size());
    if (size < frame.size() || frame[0] != 0xFF || (frame[1] & 0xE0U) != 0xE0U) return false;
    const std::string_view text(reinterpret_cast<const char*>(frame.data()), size);
    return text.find("Xing") != std::string_view::npos || text.find("Info") != std::string_view::npos;
}

}  // namespace orbinex
