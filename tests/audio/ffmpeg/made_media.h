#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "audio/sndfile/disc_media_file.h"
#include "audio/sndfile/straight_decode.h"

namespace orbinex::test {

/// What a codec allows to expect of reads.
enum class Exactness {
    exact,
    /// As exact, but far costlier to read at random.
    costly,
    /// Noise that the decoder makes up is another one after a seek.
    madeUpNoise,
    /// Packets tell the beginning of their sound to nine bits only.
    coarse,
};

/// A media file that the ffmpeg command has made, and what the same command decodes it to.
struct MadeMedium {
    std::string name;
    Exactness exactness = Exactness::exact;
    int sampleRate = 48000;
    Bytes bytes;
    StraightDecode straight;
};

/// Of each container, codec, rate and number of channels that matters. Made at the first call.
const std::vector<MadeMedium>& madeMedia();

const MadeMedium& madeMedium(std::string_view name);

/// What the ffmpeg command makes with these arguments, in a file of this name.
Bytes madeBy(const std::string& arguments, const std::string& name);

}  // namespace orbinex::test
