#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "audio/cached_audio_source.h"
#include "audio/clip_source_opener.h"
#include "audio/clip_window.h"
#include "audio/meter_ballistics.h"
#include "audio/resolve_track_clip_meta.h"
#include "audio/spectrum_analyzer.h"
#include "protocol/meter_packet.h"
#include "protocol/session_records.h"

namespace orbinex {

/// Meters the editor's tracks by reading the media of the clips under the playhead. The editor hands out no
/// audio, so what is shown is what the faders, mutes and solos make of the clips' own samples.
///
/// makeMeterPacket is meant to be called every 66 ms: smoothing goes by calls. Once every file is open and
/// every track has been seen, it allocates nothing, as long as no more than `mostSources` are heard.
class FairlightAudioMeterEngine {
  public:
    using Uptime = std::chrono::nanoseconds;
    /// Media that are kept open; a further one drops them all.
    static constexpr std::size_t mostSources = 24;
    static constexpr std::size_t historyLength = 16;

    /// What is measured. It is only read during the call.
    struct Session {
        std::span<const DAWTrackState> tracks;
        const ResolveTrackClips& clipMetaByIndex;
        /// Timeline frame of the playhead when it was last reported, and when that was.
        std::int64_t playheadFrame;
        Uptime lastPlayheadUpdateUptime;
        bool isPlaying;
        /// A label of PlaybackSpeed.
        std::string_view playbackSpeed;
        /// Video frames a second; below 1, or not a number, counts as 1.
        double framesPerSecond;
        /// The track whose spectrum and history are shown; 0 is the master.
        std::int64_t selectedTrackIndex;
        bool editorRunning;
        double masterVolumeDB;
        bool masterMuted;
    };

    /// `opener` must outlive it.
    explicit FairlightAudioMeterEngine(ClipSourceOpener& opener);

    /// The meters at `now`. The packet is the engine's own and stands until the next call.
    const DAWMeterPacket& makeMeterPacket(const Session& session, Uptime now);

  private:
    using History = std::array<std::uint8_t, historyLength>;

    /// What the tracks add up to.
    struct Sum {
        bool isAnyActive = false;
        double squaredPeaks = 0;
        double squaredRMS = 0;
    };
    struct Tick {
        const Session& session;
        Uptime now;
        PlayheadPosition playhead;
        bool anySolo;
        Sum sum;
    };

    void disconnect(const Session& session);
    void measureTracks(Tick& tick);
    void measureTrack(const DAWTrackState& track, Tick& tick);
    void measureClip(const DAWTrackState& track, const ResolveTrackClipMeta& clip, CachedAudioSource& source,
                     Tick& tick);
    void measureMaster(const Tick& tick);
    /// A track that nothing is read for.
    void showPlaceholder(std::int64_t trackIndex, TrackMeterStatus status, const Tick& tick);
    const TrackChannelMeter& updateBallistics(std::int64_t trackIndex, bool isSilent, double peakLinear,
                                              double rmsLinear, Uptime now);
    History amplitudeEnvelope(CachedAudioSource& source, const ClipWindow& window, bool isSilenced,
                              double gain);
    /// The media at `path`: unsupported for an empty path, and while it is still being opened.
    CachedAudioSource& audioSource(const std::string& path);

    ClipSourceOpener& opener_;
    std::unordered_map<std::string, CachedAudioSource> sourceCache_;
    CachedAudioSource unsupported_;
    /// By track index; 0 is the master bus.
    std::unordered_map<std::int64_t, BallisticsState> ballisticsByTrack_;
    std::array<float, 2048> monoScratch_{};
    std::array<float, 512> envelopeScratch_{};
    SpectrumAnalyzer spectrumAnalyzer_;
    History rollingHistory_{};
    std::int64_t lastSelectedTrackIndex_ = -1;
    std::uint16_t sequenceCounter_ = 0;
    /// 0...32767
    int pausedSubWindowStep_ = 0;
    DAWMeterPacket packet_;
};

}  // namespace orbinex
