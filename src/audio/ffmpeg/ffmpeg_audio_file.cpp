#include "audio/ffmpeg/ffmpeg_audio_file.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <utility>
#include <vector>

#include "audio/ffmpeg/audio_stream_decoder.h"
#include "audio/ffmpeg/decoder_pre_roll.h"
#include "audio/ffmpeg/frame_samples.h"
#include "audio/ffmpeg/step_pattern.h"

namespace orbinex {

namespace {

/// Frames that are decoded and passed over rather than sought over, besides the pre-roll.
constexpr std::int64_t skippedFrames = 4096;
/// How much farther back the first repeated seek goes, in frames; then twice as far each time.
constexpr std::int64_t firstRetreat = 8192;
/// How long before the end of Ogg reading begins at the latest, in seconds. A page lasts one, seldom more.
constexpr std::int64_t pagesAtEnd = 3;
/// What one read may cost, and finding out the length: the bytes of hours of sound where a container has no
/// index, and the frames of minutes.
constexpr std::uint64_t bytesOfRead = 128U << 20U;
constexpr int framesOfRead = 20'000;
/// After a read that came upon no packet at all, the next may cost half as many bytes, down to this.
constexpr std::uint64_t fewestBytesOfRead = 8U << 20U;
/// Packets at the beginning among which the pattern of their lengths is looked for.
constexpr std::size_t packetsOfPattern = 32;
/// Of sound in a movie, in frames: an hour and more. What tells more lies.
constexpr std::int64_t latestBeginning = std::int64_t{1} << 30;

}  // namespace

FFmpegAudioFile::FFmpegAudioFile() : framesAllowed_(framesOfRead), bytesAllowed_(bytesOfRead) {}

std::unique_ptr<FFmpegAudioFile> FFmpegAudioFile::open(std::unique_ptr<MediaFile>& media) {
    if (!media) return nullptr;
    auto file = std::unique_ptr<FFmpegAudioFile>(new FFmpegAudioFile);
    if (!file->begin(*media)) return nullptr;
    file->media_ = std::move(media);
    return file;
}

FFmpegAudioFile::~FFmpegAudioFile() = default;

bool FFmpegAudioFile::begin(MediaFile& media) {
    decoder_ = AudioStreamDecoder::open(media);
    if (!decoder_ || !takeFirstFrame()) return false;
    learnSteps();
    // What has spent its allowance before anything is known of its length is not granted another one.
    if (decoder_->hasStopped()) return false;
    decoder_->grant(bytesAllowed_);
    measureLength();
    if (decoder_->hasFailed()) {
        // The length is what the container tells. All else is as it was.
        decoder_ = AudioStreamDecoder::open(media);
        if (!decoder_ || !takeFirstFrame()) return false;
    }
    return totalSampleFrames_ >= 1;
}

bool FFmpegAudioFile::takeFirstFrame() {
    // The beginning of what is decoded may not be meant to be heard: what the codec needs to get going, and
    // what an edit list cuts off.
    std::int64_t skipped = 0;
    std::int64_t before = 0;
    std::int64_t length = 0;
    for (;;) {
        if (framesAllowed_-- <= 0 || !decoder_->decodeNext()) return false;
        if (!isUsable() || decoder_->frame().pts == AV_NOPTS_VALUE) continue;
        length = decoder_->frameLength();
        skipped += decoder_->skippedAtStart();
        if (!decoder_->isDiscarded() && length > skipped) break;
        skipped = std::max<std::int64_t>(skipped - length, 0);
        before += length;
    }
    const AVFrame& frame = decoder_->frame();
    const AVCodecID codec = decoder_->stream().codecpar->codec_id;
    sampleRate_ = frame.sample_rate;
    channelCount_ = std::min(frame.ch_layout.nb_channels, 2);
    sampleType_ = sampleTypeOf(frame);
    preRoll_ = decoderPreRoll(codec, frame.nb_samples);
    cutsFirstFrameAfterSeek_ = cutsFirstFrameAfterSeek(codec);
    const auto timeBase = decoder_->stream().time_base;
    if (const auto start = decoder_->startOfMovie())
        audibleFrom_ = std::clamp<std::int64_t>(
            av_rescale_q(frame.pts - *start, timeBase, {1, sampleRate_}) + skipped, 0, latestBeginning);
    firstTimestamp_ = frame.pts;
    skipped_ = skipped - audibleFrom_;
    firstPosition_ = -(skipped_ + before);
    const auto step = decoderStep(codec, sampleRate_, frame.nb_samples);
    placement_ = placementBy({&step, 1});
    placed_ = Placed{std::min<std::int64_t>(-skipped_, 0), -skipped_, length - skipped_};
    exactFrom_ = std::min<std::int64_t>(firstPosition_, 0);
    return true;
}

FramePlacement FFmpegAudioFile::placementBy(std::span<const std::int64_t> steps) const {
    const auto timeBase = decoder_->stream().time_base;
    return {{timeBase.num, timeBase.den},
            sampleRate_,
            firstTimestamp_,
            skipped_,
            steps,
            timestampLateness(decoder_->stream().codecpar->codec_id)};
}

/// Packets of plain samples may last anything, such as one picture each. Their lengths repeat themselves, or
/// all of them are seen, or what coarse timestamps round away is lost.
void FFmpegAudioFile::learnSteps() {
    const auto timeBase = decoder_->stream().time_base;
    if (!decoder_->isPlainPCM() || !FramePlacement::needsSteps({timeBase.num, timeBase.den}, sampleRate_))
        return;
    std::vector<std::int64_t> steps{placed_->end - placed_->start};
    placed_.reset();
    std::optional<std::int64_t> length;
    while (steps.size() < packetsOfPattern && (length = decoder_->nextPacketLength()) && *length > 0)
        steps.push_back(*length);
    const bool areAll = !length && !decoder_->hasStopped();
    placement_ = placementBy(areAll ? steps : stepPattern(steps));
}

void FFmpegAudioFile::measureLength() {
    const auto told = decoder_->duration();
    const auto toldEnd = told ? placement_->position(firstTimestamp_ + *told, std::nullopt) : 0;
    totalSampleFrames_ = toldEnd;
    const auto last = lastPacketPosition(toldEnd);
    if (!last) return;
    lastPosition_ = std::max<std::int64_t>(*last, 0);
    if (!seekTo(lastPosition_)) return;
    std::int64_t end = 0;
    do end = placed_->end;
    while (placeNext());
    placed_.reset();
    if (!decoder_->hasStopped() && framesAllowed_ > 0) totalSampleFrames_ = end;
}

std::optional<std::int64_t> FFmpegAudioFile::lastPacketPosition(std::int64_t toldEnd) {
    placed_.reset();
    // What the container tells may be a guess.
    for (std::int64_t back = 0; back <= toldEnd; back = back * 8 + sampleRate_) {
        if (!decoder_->seek(placement_->timestampBefore(toldEnd - back))) continue;
        const auto last = decoder_->lastTimestamp();
        if (decoder_->hasStopped()) break;
        if (last) return placement_->position(*last, std::nullopt);
    }
    return std::nullopt;
}

bool FFmpegAudioFile::openAnew() {
    auto anew = std::unique_ptr<FFmpegAudioFile>(new FFmpegAudioFile);
    anew->framesAllowed_ = framesAllowed_;
    anew->decoder_ = AudioStreamDecoder::open(*media_);
    if (!anew->decoder_ || !anew->takeFirstFrame() || anew->decoder_->hasFailed()) return false;
    if (anew->sampleRate_ != sampleRate_ || anew->channelCount_ != channelCount_ ||
        anew->sampleType_ != sampleType_)
        return false;
    decoder_ = std::move(anew->decoder_);
    decoder_->grant(bytesAllowed_);
    placed_ = anew->placed_;
    exactFrom_ = anew->exactFrom_;
    return true;
}

std::size_t FFmpegAudioFile::read(std::int64_t start, std::size_t count, PCMBuffer& buffer) {
    if (start < 0 || start >= totalSampleFrames_) return 0;
    framesAllowed_ = framesOfRead;
    if (decoder_->hasFailed() && !openAnew()) return 0;
    decoder_->grant(bytesAllowed_);
    const int knownBefore = decoder_->knownPackets();
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(
        {static_cast<std::uint64_t>(totalSampleFrames_ - start), count, PCMBuffer::frameCapacity}));
    std::size_t done = 0;
    while (done < wanted) {
        const auto position = start + static_cast<std::int64_t>(done);
        if (!reach(position)) break;
        const auto soundFrom = std::clamp(audibleFrom_, placed_->start, placed_->end);
        const auto until = position < soundFrom ? soundFrom : placed_->end;
        const auto piece = std::min(wanted - done, static_cast<std::size_t>(until - position));
        if (position < soundFrom)
            writeSilence(piece, channelCount_, buffer, done);
        else
            copySamples(decoder_->frame(), static_cast<std::size_t>(position - placed_->start), piece,
                        channelCount_, buffer, done);
        done += piece;
    }
    const bool gotOn = done > 0 || decoder_->knownPackets() != knownBefore;
    bytesAllowed_ = gotOn ? bytesOfRead : std::max(bytesAllowed_ / 2, fewestBytesOfRead);
    return done;
}

/// Makes the decoder's frame the one that holds the position, or follows it after a gap.
bool FFmpegAudioFile::reach(std::int64_t position) {
    if (placed_ && position >= placed_->silenceFrom && position >= exactFrom_ &&
        position - placed_->end <= preRoll_ + skippedFrames && decodeOnTo(position))
        return true;
    return !decoder_->hasStopped() && seekTo(position) && decodeOnTo(position);
}

bool FFmpegAudioFile::decodeOnTo(std::int64_t position) {
    while (position >= placed_->end)
        if (!placeNext()) return false;
    return position >= placed_->silenceFrom;
}

/// Leaves the decoder's frame at the position or before it, far enough before it.
bool FFmpegAudioFile::seekTo(std::int64_t position) {
    // Containers find a packet near the place that is asked for, some of them behind it.
    auto wantedStart = position - preRoll_;
    if (decoder_->isOgg()) wantedStart = std::min(wantedStart, lastPosition_ - pagesAtEnd * sampleRate_);
    if (decoder_->losesItsPlace()) wantedStart = firstPosition_;
    for (auto retreat = firstRetreat; wantedStart > firstPosition_; retreat *= 2) {
        if (seekBefore(wantedStart) && placed_->start <= position - preRoll_) {
            exactFrom_ = placed_->start + preRoll_;
            return true;
        }
        if (decoder_->hasStopped() || framesAllowed_ <= 0) return false;
        wantedStart -= retreat;
    }
    return startOver();
}

bool FFmpegAudioFile::seekBefore(std::int64_t position) {
    placed_.reset();
    if (!decoder_->seek(placement_->timestampBefore(position))) return false;
    if (cutsFirstFrameAfterSeek_ && !decoder_->decodeNext()) return false;
    return placeNext();
}

bool FFmpegAudioFile::startOver() {
    placed_.reset();
    const bool isAtFirst = decoder_->seekToFirst(placement_->timestampBefore(firstPosition_)) && placeNext();
    if (!isAtFirst || placed_->start > firstPosition_) {
        if (decoder_->hasStopped() || !media_ || !openAnew()) return false;
    }
    placed_->silenceFrom = std::min<std::int64_t>(placed_->start, 0);
    exactFrom_ = std::min<std::int64_t>(firstPosition_, 0);
    return true;
}

/// Decodes the next frame that can be placed.
bool FFmpegAudioFile::placeNext() {
    const auto expected = placed_ ? std::optional(placed_->end) : std::nullopt;
    placed_.reset();
    while (framesAllowed_-- > 0 && decoder_->decodeNext()) {
        const auto timestamp = decoder_->frame().pts;
        if (!isUsable() || decoder_->isDiscarded() || (timestamp == AV_NOPTS_VALUE && !expected)) continue;
        const auto start =
            timestamp == AV_NOPTS_VALUE ? *expected : placement_->position(timestamp, expected);
        const auto end = start + decoder_->frameLength();
        // Of two timestamps that contradict each other before anything is heard the earlier one is right.
        const bool wasLate =
            expected && *expected < exactFrom_ && placement_->tellsOfLateness(start, *expected);
        const auto silenceFrom = wasLate ? start : expected.value_or(start);
        if (end <= silenceFrom) continue;
        placed_ = Placed{silenceFrom, start, end};
        return true;
    }
    return false;
}

/// True when the decoder's frame is of the kind that the stream began with.
bool FFmpegAudioFile::isUsable() const {
    const AVFrame& frame = decoder_->frame();
    if (!hasKnownSamples(frame) || frame.sample_rate < 1 || frame.ch_layout.nb_channels < 1 ||
        frame.nb_samples < 1)
        return false;
    return sampleRate_ == 0 ||
           (frame.sample_rate == sampleRate_ && frame.ch_layout.nb_channels >= channelCount_ &&
            sampleTypeOf(frame) == sampleType_);
}

}  // namespace orbinex
