#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "audio/fairlight_audio_meter_engine.h"
#include "sim/simulated_clip_media.h"

namespace orbinex::test {

/// A sine in both channels.
inline SimulatedSound::Sample sine(double frequency, double amplitude, double sampleRate = 48'000) {
    return [=](std::int64_t frame, int) {
        const double turns = frequency * static_cast<double>(frame) / sampleRate;
        return static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * turns));
    };
}

/// An engine with a session whose clips all begin at timeline frame 86400, at 24 frames a second, where the
/// playhead stands, paused. One second of media is under it already.
struct MeterWorld {
    static constexpr std::int64_t clipStart = 86'400;

    MeterWorld() { engine = std::make_unique<FairlightAudioMeterEngine>(opener); }

    /// Adds track `index` with a clip of this sound.
    DAWTrackState& addTrack(std::int64_t index, SimulatedSound::Sample sample) {
        return addTrack(index, SimulatedSound{.sample = std::move(sample)});
    }
    DAWTrackState& addTrack(std::int64_t index, SimulatedSound sound) {
        const std::string path = "/clips/" + std::to_string(index) + ".wav";
        media.sounds[path] = std::make_shared<SimulatedSound>(std::move(sound));
        return addTrack(index, path);
    }
    DAWTrackState& addTrack(std::int64_t index, const std::string& path) {
        clips[index] = {.trackIndex = index,
                        .hasActiveClip = true,
                        .clipStartFrame = clipStart,
                        .sourceStartFrame = 24,
                        .filePath = path};
        return listTrack(index);
    }
    /// Adds a track without a clip.
    DAWTrackState& listTrack(std::int64_t index, bool isMaster = false) {
        auto& track = tracks.emplace_back();
        track.index = index;
        track.isMaster = isMaster;
        return track;
    }
    const DAWMeterPacket& tick() {
        const auto& packet = engine->makeMeterPacket({.tracks = tracks,
                                                      .clipMetaByIndex = clips,
                                                      .playheadFrame = playhead,
                                                      .lastPlayheadUpdateUptime = now - sincePlayheadUpdate,
                                                      .isPlaying = isPlaying,
                                                      .playbackSpeed = playbackSpeed,
                                                      .framesPerSecond = framesPerSecond,
                                                      .selectedTrackIndex = selected,
                                                      .editorRunning = editorRunning,
                                                      .masterVolumeDB = masterVolumeDB,
                                                      .masterMuted = masterMuted},
                                                     now);
        now += std::chrono::milliseconds(66);
        return packet;
    }
    /// The meter of a track in the next packet.
    TrackChannelMeter meter(std::int64_t index) {
        for (const auto& meter : tick().channelMeters)
            if (meter.trackIndex == index) return meter;
        return {.trackIndex = -1};
    }

    SimulatedClipMedia media;
    DirectSourceOpener opener{media};
    std::unique_ptr<FairlightAudioMeterEngine> engine;
    std::vector<DAWTrackState> tracks;
    ResolveTrackClips clips;
    std::chrono::nanoseconds now = std::chrono::hours(1);
    std::chrono::nanoseconds sincePlayheadUpdate{0};
    std::int64_t playhead = clipStart;
    bool isPlaying = false;
    std::string playbackSpeed = "0X";
    double framesPerSecond = 24;
    std::int64_t selected = 1;
    bool editorRunning = true;
    double masterVolumeDB = 0;
    bool masterMuted = false;
};

}  // namespace orbinex::test
