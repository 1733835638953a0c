#include "audio/fairlight_audio_meter_engine.h"

#include <algorithm>
#include <cmath>

#include "protocol/meter_scale.h"

namespace orbinex {

namespace {

constexpr int pausedSteps = 32'768;
constexpr std::size_t envelopeFrames = 256;
/// The history's entry that lies under the playhead.
constexpr int historyCentre = 8;

/// The frames at `start`; none for media that cannot be measured.
MonoRead readMono(CachedAudioSource& source, std::int64_t start, std::size_t count, std::span<float> buffer) {
    if (auto* file = std::get_if<std::shared_ptr<AVAudioClipReader>>(&source))
        return (*file)->readMono(start, count, buffer);
    if (auto* clip = std::get_if<std::shared_ptr<R3DAudioClipReader>>(&source))
        return (*clip)->readMono(start, count, buffer);
    return {};
}

double sampleRateOf(const CachedAudioSource& source) {
    const auto* file = std::get_if<std::shared_ptr<AVAudioClipReader>>(&source);
    return file ? (*file)->sampleRate() : R3DAudioClipReader::sampleRate;
}

/// False for what is not a number.
bool isAudible(double magnitude) {
    return magnitude > silenceLinear;
}

double squareIfFinite(double value) {
    return std::isfinite(value) ? value * value : 0;
}

std::uint32_t lowMilliseconds(std::chrono::nanoseconds uptime) {
    return static_cast<std::uint32_t>(
        static_cast<std::uint64_t>(std::chrono::floor<std::chrono::milliseconds>(uptime).count()));
}

}  // namespace

FairlightAudioMeterEngine::FairlightAudioMeterEngine(ClipSourceOpener& opener) : opener_(opener) {}

const DAWMeterPacket& FairlightAudioMeterEngine::makeMeterPacket(const Session& session, Uptime now) {
    ++sequenceCounter_;
    pausedSubWindowStep_ = (pausedSubWindowStep_ + 1) % pausedSteps;
    if (session.selectedTrackIndex != lastSelectedTrackIndex_) {
        lastSelectedTrackIndex_ = session.selectedTrackIndex;
        rollingHistory_.fill(0);
    }
    packet_.sequence = sequenceCounter_;
    packet_.timestampMs = lowMilliseconds(now);
    packet_.selectedTrackIndex = session.selectedTrackIndex;
    packet_.selectedTrackStatus = TrackMeterStatus::silence;
    packet_.channelMeters.clear();
    packet_.spectrumBands.assign(SpectrumAnalyzer::bandCount, 0);
    packet_.amplitudeHistory.assign(historyLength, 0);
    if (!session.editorRunning) {
        disconnect(session);
        return packet_;
    }
    packet_.amplitudeHistory.assign(rollingHistory_.begin(), rollingHistory_.end());
    const double fps = session.framesPerSecond > 1 ? session.framesPerSecond : 1;
    Tick tick{session,
              now,
              {session.playheadFrame,
               playheadExtrapolation(session.isPlaying, session.playbackSpeed,
                                     now - session.lastPlayheadUpdateUptime),
               session.isPlaying, fps},
              std::ranges::any_of(session.tracks,
                                  [](const DAWTrackState& track) { return !track.isMaster && track.isSolo; }),
              {}};
    measureTracks(tick);
    measureMaster(tick);
    return packet_;
}

void FairlightAudioMeterEngine::disconnect(const Session& session) {
    packet_.selectedTrackStatus = TrackMeterStatus::disconnected;
    for (const auto& track : session.tracks) {
        TrackChannelMeter meter;
        meter.trackIndex = track.index;
        meter.status = TrackMeterStatus::disconnected;
        packet_.channelMeters.push_back(meter);
    }
}

void FairlightAudioMeterEngine::measureTracks(Tick& tick) {
    for (const auto& track : tick.session.tracks)
        if (!track.isMaster && track.index >= 1) measureTrack(track, tick);
}

void FairlightAudioMeterEngine::measureTrack(const DAWTrackState& track, Tick& tick) {
    const auto clip = tick.session.clipMetaByIndex.find(track.index);
    if (clip == tick.session.clipMetaByIndex.end() || !clip->second.hasActiveClip)
        return showPlaceholder(track.index, TrackMeterStatus::silence, tick);
    CachedAudioSource& source = audioSource(clip->second.filePath);
    if (std::holds_alternative<UnsupportedSource>(source))
        return showPlaceholder(track.index, TrackMeterStatus::unavailable, tick);
    measureClip(track, clip->second, source, tick);
}

void FairlightAudioMeterEngine::measureClip(const DAWTrackState& track, const ResolveTrackClipMeta& clip,
                                            CachedAudioSource& source, Tick& tick) {
    const bool isSilenced = track.isMuted || (tick.anySolo && !track.isSolo);
    const double gain = isSilenced ? 0 : gainFromDB(track.volumeDB);
    const auto window = clipWindow(clip, tick.playhead, sampleRateOf(source), pausedSubWindowStep_);
    const auto heard = readMono(source, window.start, window.frames, monoScratch_);
    const double peak = gain * static_cast<double>(heard.peak);
    const double rms = gain * static_cast<double>(heard.rms);
    const bool isSilent = isSilenced || heard.framesRead == 0 || !isAudible(peak);
    if (!isSilent) {
        tick.sum.isAnyActive = true;
        tick.sum.squaredPeaks += squareIfFinite(peak);
        tick.sum.squaredRMS += squareIfFinite(rms);
    }
    const auto& meter = updateBallistics(track.index, isSilent, peak, rms, tick.now);
    if (track.index != tick.session.selectedTrackIndex) return;
    packet_.selectedTrackStatus = meter.status;
    if (isSilent) {
        spectrumAnalyzer_.decayBands();
    } else {
        const auto bands =
            spectrumAnalyzer_.analyze(std::span<const float>(monoScratch_).first(heard.framesRead), gain);
        packet_.spectrumBands.assign(bands.begin(), bands.end());
    }
    const auto history = amplitudeEnvelope(source, window, isSilenced, gain);
    packet_.amplitudeHistory.assign(history.begin(), history.end());
}

void FairlightAudioMeterEngine::showPlaceholder(std::int64_t trackIndex, TrackMeterStatus status,
                                                const Tick& tick) {
    auto& ballistics = ballisticsByTrack_[trackIndex];
    ballistics.fallSilent(tick.now);
    packet_.channelMeters.push_back(ballistics.meter(trackIndex, status, tick.now));
    if (trackIndex == tick.session.selectedTrackIndex) packet_.selectedTrackStatus = status;
}

void FairlightAudioMeterEngine::measureMaster(const Tick& tick) {
    const auto& session = tick.session;
    const double gain = session.masterMuted ? 0 : gainFromDB(session.masterVolumeDB);
    const double peak = gain * std::sqrt(tick.sum.squaredPeaks);
    const double rms = gain * std::sqrt(tick.sum.squaredRMS);
    const bool isSilent = !tick.sum.isAnyActive || session.masterMuted || !isAudible(peak);
    const auto& meter = updateBallistics(0, isSilent, peak, rms, tick.now);
    if (session.selectedTrackIndex != 0) return;
    std::rotate(rollingHistory_.begin(), rollingHistory_.begin() + 1, rollingHistory_.end());
    rollingHistory_.back() = meterByte(meter.peakDBFS);
    packet_.amplitudeHistory.assign(rollingHistory_.begin(), rollingHistory_.end());
    packet_.selectedTrackStatus = meter.status;
}

const TrackChannelMeter& FairlightAudioMeterEngine::updateBallistics(std::int64_t trackIndex, bool isSilent,
                                                                     double peakLinear, double rmsLinear,
                                                                     Uptime now) {
    auto& ballistics = ballisticsByTrack_[trackIndex];
    if (isSilent) {
        ballistics.fallSilent(now);
    } else {
        ballistics.hear(peakLinear, rmsLinear, now);
    }
    const auto status = isSilent ? TrackMeterStatus::silence : TrackMeterStatus::activeSignal;
    return packet_.channelMeters.emplace_back(ballistics.meter(trackIndex, status, now));
}

FairlightAudioMeterEngine::History FairlightAudioMeterEngine::amplitudeEnvelope(CachedAudioSource& source,
                                                                                const ClipWindow& window,
                                                                                bool isSilenced,
                                                                                double gain) {
    History history{};
    if (isSilenced || !(gain > 0)) return history;
    for (int i = 0; i < static_cast<int>(historyLength); ++i) {
        const std::int64_t start = window.centre + (i - historyCentre) * window.samplesPerFrame;
        if (start < 0) continue;
        const auto heard = readMono(source, start, envelopeFrames, envelopeScratch_);
        if (heard.framesRead == 0) continue;
        history[static_cast<std::size_t>(i)] =
            meterByte(linearToDBFS(gain * static_cast<double>(heard.peak)));
    }
    return history;
}

CachedAudioSource& FairlightAudioMeterEngine::audioSource(const std::string& path) {
    if (path.empty()) return unsupported_;
    if (const auto cached = sourceCache_.find(path); cached != sourceCache_.end()) return cached->second;
    auto source = opener_.open(path);
    if (!source) return unsupported_;
    if (sourceCache_.size() >= mostSources) sourceCache_.clear();
    return sourceCache_.emplace(path, std::move(*source)).first->second;
}

}  // namespace orbinex
