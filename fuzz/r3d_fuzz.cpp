// The first 64 bytes are the end of a segment's last page, the rest is what lies in the pages before, from
// the index on. The clip has two segments of the same bytes.

#include <algorithm>
#include <cmath>
#include <cstring>

#include "audio/r3d_audio_clip_reader.h"
#include "require.h"
#include "sim/simulated_clip_media.h"

using namespace orbinex;

namespace {

constexpr std::size_t tailSize = 64;
constexpr std::size_t page = 4096;

Bytes segmentOf(ByteView input) {
    const auto tail = input.first(std::min(input.size(), tailSize));
    const auto pages = input.subspan(tail.size());
    Bytes bytes(page);
    bytes.insert(bytes.end(), pages.begin(), pages.end());
    // Three pages at least, and the tail at the beginning of the last.
    bytes.resize(std::max(3 * page, (bytes.size() + page - 1) / page * page));
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto segment = std::make_shared<Bytes>(segmentOf(ByteView(data, size)));
    SimulatedClipMedia media;
    media.files["/A_001.R3D"] = segment;
    media.files["/A_002.R3D"] = segment;
    const auto reader = R3DAudioClipReader::create("/A_001.R3D", media);
    REQUIRE(reader != nullptr);
    const std::int64_t total = reader->totalSampleFrames();
    REQUIRE(total >= 0);
    std::array<float, 5000> buffer{};
    for (const std::int64_t start :
         {std::int64_t{0}, total / 2, total / 2 + 1, total - 1, total, std::int64_t{-1}}) {
        for (const std::size_t count : {std::size_t{1}, std::size_t{1024}, buffer.size()}) {
            const auto read = reader->readMono(start, count, buffer);
            REQUIRE(read.framesRead <= count);
            REQUIRE(read.peak >= 0 && read.peak <= 1);
            REQUIRE(std::isfinite(read.rms) && read.rms <= 1.0001F);
            const bool isInside = start >= 0 && start < total;
            REQUIRE(isInside || read == MonoRead{});
            if (isInside)
                REQUIRE(static_cast<std::uint64_t>(read.framesRead) <=
                        static_cast<std::uint64_t>(total - start));
            for (std::size_t i = 0; i < read.framesRead; ++i) REQUIRE(buffer[i] >= -1 && buffer[i] <= 1);
        }
    }
    return 0;
}
