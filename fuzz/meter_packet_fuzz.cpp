#include <algorithm>

#include "protocol/meter_packet.h"
#include "require.h"

using namespace orbinex;

namespace {

bool isLevel(double dB) {
    return dB >= -288 && dB <= 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto packet = decodeMeter({data, size});
    if (!packet) return 0;
    REQUIRE(size >= 10 + 5 * packet->channelMeters.size() + packet->spectrumBands.size() +
                        packet->amplitudeHistory.size());
    REQUIRE(packet->selectedTrackStatus <= TrackMeterStatus::disconnected);
    for (const auto& meter : packet->channelMeters) {
        REQUIRE(meter.status <= TrackMeterStatus::disconnected);
        REQUIRE(isLevel(meter.peakDBFS) && isLevel(meter.rmsDBFS) && isLevel(meter.peakHoldDBFS));
        REQUIRE(meter.trackIndex >= 0 && meter.trackIndex <= 255);
    }

    const Bytes again = encodeMeter(*packet);
    REQUIRE(again.size() <= 120 && again.capacity() == again.size());
    DAWMeterPacket kept = *packet;
    kept.channelMeters.resize(std::min(kept.channelMeters.size(), maximumChannelMeters));
    kept.spectrumBands.resize(std::min(kept.spectrumBands.size(), maximumSpectrumBands));
    kept.amplitudeHistory.resize(std::min(kept.amplitudeHistory.size(), maximumAmplitudeHistory));
    REQUIRE(decodeMeter(again) == kept);
    return 0;
}
