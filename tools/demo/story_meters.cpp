// The editor plays; the phone's meters show the levels of the clips' own samples.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <variant>

#include "stage.h"
#include "test_phone/meter_picture.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

/// Where the measuring begins: every clip sounds there.
constexpr const char* everythingPlays = "TC|01:00:10:12";
/// Of playing, before the first look: longer than meters take to fall from the clips before.
constexpr auto settleTime = 700ms;
constexpr auto lookTime = 1500ms;
/// Between pictures where nobody watches them move.
constexpr auto picturePace = 500ms;

/// The bounds of the spectrum's bands in bins of 1/1024 of the sample rate.
constexpr std::array bandBounds{1, 2, 3, 4, 6, 8, 11, 15, 21, 30, 43, 62, 89, 128, 186, 275, 480};

const DAWMeterPacket* meters(const Stage& stage) {
    const auto& received = stage.program.phone().received;
    for (std::size_t i = received.size(); i-- > 0;)
        if (const auto* packet = std::get_if<DAWMeterPacket>(&received[i].value)) return packet;
    return nullptr;
}

/// Of a track, or of the master, which is track 0; in whole dB, as the scale has steps of up to 0.4.
std::string level(const Stage& stage, std::int64_t index) {
    if (const auto* packet = meters(stage)) {
        const auto meter = std::ranges::find(packet->channelMeters, index, &TrackChannelMeter::trackIndex);
        if (meter != packet->channelMeters.end())
            return std::to_string(std::lround(meter->peakDBFS)) + " dBFS";
    }
    return "none";
}

/// Which frequencies are loudest in the selected track.
std::string loudestBand(const Stage& stage) {
    const auto* packet = meters(stage);
    if (!packet || packet->spectrumBands.size() + 1 != bandBounds.size()) return "none";
    const auto& bands = packet->spectrumBands;
    const auto loudest = static_cast<std::size_t>(std::ranges::max_element(bands) - bands.begin());
    const auto hertz = [&](std::size_t bound) { return std::to_string(bandBounds[bound] * 48'000 / 1024); };
    return bands[loudest] == 0 ? "none" : hertz(loudest) + " to " + hertz(loudest + 1) + " Hz";
}

std::string dBFS(int level) {
    return std::to_string(level) + " dBFS";
}

/// Lets it play for a while and shows what the phone shows.
void watch(Stage& stage, std::chrono::milliseconds time) {
    for (auto left = time; left > 0ms; left -= picturePace) {
        stage.loop.linger(std::min<std::chrono::milliseconds>(left, picturePace));
        if (const auto* packet = meters(stage)) stage.report.shows(test_phone::meterPicture(*packet));
    }
}

}  // namespace

void hearTheClips(Stage& stage) {
    const auto& clips = stage.clips;
    stage.user.control(everythingPlays);
    stage.user.control("SEL|4");
    stage.user.strike(Key::l);
    watch(stage, settleTime + lookTime);
    stage.expectThat("the voice on Dialogue", "is heard", [&] {
        const auto* packet = meters(stage);
        return packet && !packet->channelMeters.empty() && packet->channelMeters[0].peakDBFS > -30;
    });
    const struct {
        const char* name;
        std::int64_t track;
        const DemoClip& clip;
    } known[] = {{"a sweep, FLAC", 2, clips.sweep},
                 {"noise, WAV", 3, clips.noise},
                 {"a tone, AAC", 4, clips.tone},
                 {"a tone, R3D", 5, clips.camera}};
    for (const auto& row : known) {
        stage.expect(row.name + (", made at " + dBFS(row.clip.peakDBFS)), dBFS(row.clip.peakDBFS),
                     [&] { return level(stage, row.track); });
    }
    stage.expect("the spectrum of the tone of 1000 Hz", "984 to 1406 Hz", [&] { return loudestBand(stage); });
    stage.user.control("SEL|5");
    stage.expect("of that of 250 Hz", "187 to 281 Hz", [&] { return loudestBand(stage); });
    // The output's volume, which the master fader is, was at its end.
    stage.user.control("VOL|0|0");
    stage.user.control("SOLO|4|1");
    stage.expect("the tone of 1000 Hz solo: the master", dBFS(clips.tone.peakDBFS),
                 [&] { return level(stage, 0); });
    stage.user.control("VOL|4|-10");
    stage.expect("its fader at -10 dB", dBFS(clips.tone.peakDBFS - 10), [&] { return level(stage, 0); });
    watch(stage, picturePace);
    stage.user.control("SOLO|4|0");
    stage.user.strike(Key::k);
    stage.expectThat("K pauses: the meters", "live on", [&] {
        const auto* packet = meters(stage);
        return packet && level(stage, 5) == dBFS(clips.camera.peakDBFS);
    });
}

}  // namespace orbinex::demo
