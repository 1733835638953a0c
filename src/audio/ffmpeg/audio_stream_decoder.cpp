#include "audio/ffmpeg/audio_stream_decoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <string_view>

namespace orbinex {

namespace {

/// Containers that hold audio themselves. Lists of other files, manifests and series of pictures are not
/// among them.
constexpr auto allowedContainers =
    "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,mxf,mpegts,mpeg,gxf,avi,ogg,flac,mp3,aac,ac3,eac3,wav,w64,aiff,"
    "caf,wv";
/// Decoders of audio. Without those of pictures nothing looks into them while a file is opened.
constexpr auto allowedDecoders =
    "aac,alac,flac,opus,vorbis,mp3float,mp3,mp2float,mp2,ac3,eac3,dca,truehd,mlp,wavpack,"
    "pcm_u8,pcm_s8,pcm_s16le,pcm_s16be,pcm_s24le,pcm_s24be,pcm_s32le,pcm_s32be,pcm_f32le,pcm_f32be,"
    "pcm_f64le,pcm_f64be,pcm_alaw,pcm_mulaw,pcm_bluray,pcm_s16le_planar,pcm_s24le_planar,pcm_s32le_planar,"
    "pcm_dvd,s302m,adpcm_ima_qt,adpcm_ima_wav,adpcm_ms";
/// No protocol has this name.
constexpr auto allowedProtocols = "none";

// What a file may cost. Real files have far less of each.
constexpr std::uint64_t openingBytes = 128U << 20U;
constexpr std::int64_t probedBytes = 2 << 20;
constexpr std::int64_t probedMicroseconds = 2'000'000;
constexpr int maxStreams = 128;
constexpr std::size_t largestAllocation = 64U << 20U;
/// Packets that the headers list, of all streams: five hours of sixteen tracks of PCM.
constexpr std::uint64_t maxListedPackets = 16'000'000;
/// Packets of ours in a row that give no frame, and packets of other streams between two of ours.
constexpr int maxFruitlessPackets = 1000;
constexpr int maxForeignPackets = 100'000;

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

void prepareLibraries() {
    static const bool isPrepared = [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(largestAllocation);
        return true;
    }();
    static_cast<void>(isPrepared);
}

bool tellsItsSamples(const AVStream& stream) {
    return stream.codecpar->codec_id != AV_CODEC_ID_NONE && stream.codecpar->sample_rate > 0 &&
           stream.codecpar->ch_layout.nb_channels > 0 && stream.duration != AV_NOPTS_VALUE;
}

AVStream* firstAudioStream(const AVFormatContext& format) {
    AVStream* found = nullptr;
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const bool isWanted = !found && format.streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        if (isWanted) found = format.streams[i];
        format.streams[i]->discard = isWanted ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    return found;
}

/// Of the two decoders of MPEG's second layer the one whose samples do not depend on those before.
const AVCodec* findDecoder(AVCodecID id) {
    return id == AV_CODEC_ID_MP2 ? avcodec_find_decoder_by_name("mp2float") : avcodec_find_decoder(id);
}

std::uint64_t listedPackets(const AVFormatContext& format) {
    std::uint64_t sum = 0;
    for (unsigned i = 0; i < format.nb_streams; ++i)
        sum += static_cast<std::uint64_t>(avformat_index_get_entries_count(format.streams[i]));
    return sum;
}

}  // namespace

void AudioStreamDecoder::FreeFormat::operator()(AVFormatContext* format) const {
    avformat_close_input(&format);
}
void AudioStreamDecoder::FreeCodec::operator()(AVCodecContext* codec) const {
    avcodec_free_context(&codec);
}
void AudioStreamDecoder::FreePacket::operator()(AVPacket* packet) const {
    av_packet_free(&packet);
}
void AudioStreamDecoder::FreeFrame::operator()(AVFrame* frame) const {
    av_frame_free(&frame);
}

std::unique_ptr<AudioStreamDecoder> AudioStreamDecoder::open(MediaFile& media) {
    prepareLibraries();
    auto decoder = std::unique_ptr<AudioStreamDecoder>(new AudioStreamDecoder(media));
    if (!decoder->openContainer() || !decoder->findStream() || !decoder->openDecoder()) return nullptr;
    return decoder;
}

AudioStreamDecoder::AudioStreamDecoder(MediaFile& media)
    : media_(media), io_(media), packet_(av_packet_alloc()), frame_(av_frame_alloc()) {}

AudioStreamDecoder::~AudioStreamDecoder() = default;

bool AudioStreamDecoder::openContainer() {
    AVFormatContext* format = avformat_alloc_context();
    if (!format || !io_.context() || !packet_ || !frame_) {
        avformat_free_context(format);
        return false;
    }
    io_.grant(openingBytes);
    format->pb = io_.context();
    format->flags |= AVFMT_FLAG_CUSTOM_IO;
    format->io_open = refuseToOpen;
    format->probesize = probedBytes;
    format->max_analyze_duration = probedMicroseconds;
    format->max_streams = maxStreams;
    format->format_whitelist = av_strdup(allowedContainers);
    format->codec_whitelist = av_strdup(allowedDecoders);
    format->protocol_whitelist = av_strdup(allowedProtocols);
    if (!format->format_whitelist || !format->codec_whitelist || !format->protocol_whitelist) {
        avformat_free_context(format);
        return false;
    }
    // A header of a few bytes may claim a packet for every number there is, of each of its streams.
    const auto mostPackets = std::min(maxListedPackets, media_.size().value_or(0));
    io_.watch([format, mostPackets] { return listedPackets(*format) <= mostPackets; });
    // A failure frees the context.
    const bool isOpen = avformat_open_input(&format, nullptr, nullptr, nullptr) >= 0;
    io_.watch(nullptr);
    if (isOpen) format_.reset(format);
    return isOpen && !io_.isExhausted();
}

bool AudioStreamDecoder::findStream() {
    stream_ = firstAudioStream(*format_);
    // Most headers tell all; to look into packets costs far more.
    if (!stream_ || !tellsItsSamples(*stream_)) {
        if (avformat_find_stream_info(format_.get(), nullptr) < 0) return false;
        stream_ = firstAudioStream(*format_);
    }
    return stream_ != nullptr;
}

bool AudioStreamDecoder::openDecoder() {
    const AVCodec* codec = findDecoder(stream_->codecpar->codec_id);
    if (!codec) return false;
    codec_.reset(avcodec_alloc_context3(codec));
    if (!codec_ || avcodec_parameters_to_context(codec_.get(), stream_->codecpar) < 0) return false;
    codec_->thread_count = 1;
    codec_->pkt_timebase = stream_->time_base;
    // Which samples are heard is decided by their positions.
    codec_->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    codec_->codec_whitelist = av_strdup(allowedDecoders);
    return codec_->codec_whitelist && avcodec_open2(codec_.get(), codec, nullptr) >= 0;
}

std::optional<std::int64_t> AudioStreamDecoder::duration() const {
    if (stream_->duration != AV_NOPTS_VALUE && stream_->duration > 0) return stream_->duration;
    if (format_->duration != AV_NOPTS_VALUE && format_->duration > 0)
        return av_rescale_q(format_->duration, AVRational{1, AV_TIME_BASE}, stream_->time_base);
    return std::nullopt;
}

std::optional<std::int64_t> AudioStreamDecoder::startOfMovie() const {
    if (!std::string_view(format_->iformat->name).starts_with("mov,")) return std::nullopt;
    for (unsigned i = 0; i < format_->nb_streams; ++i) {
        AVStream* const stream = format_->streams[i];
        if (stream->codecpar->codec_type != AVMEDIA_TYPE_VIDEO ||
            (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
            continue;
        // What is shown at 0 may be decoded before.
        const AVIndexEntry* const first = avformat_index_get_entry(stream, 0);
        if (first)
            return av_rescale_q(std::max<std::int64_t>(first->timestamp, 0), stream->time_base,
                                stream_->time_base);
    }
    return std::nullopt;
}

bool AudioStreamDecoder::isOgg() const {
    return std::string_view(format_->iformat->name) == "ogg";
}

bool AudioStreamDecoder::losesItsPlace() const {
    return isOgg() && stream_->codecpar->codec_id == AV_CODEC_ID_FLAC;
}

bool AudioStreamDecoder::readPacket() {
    for (int i = 0; i < maxForeignPackets; ++i) {
        av_packet_unref(packet_.get());
        if (av_read_frame(format_.get(), packet_.get()) < 0 || hasStopped()) return false;
        if (packet_->stream_index == stream_->index) return true;
    }
    return false;
}

bool AudioStreamDecoder::feedDecoder() {
    if (isDraining_) return false;
    if (readPacket()) {
        // A packet that cannot be decoded leaves a gap.
        avcodec_send_packet(codec_.get(), packet_.get());
        return true;
    }
    if (hasStopped()) return false;
    isDraining_ = true;
    return avcodec_send_packet(codec_.get(), nullptr) >= 0;
}

bool AudioStreamDecoder::decodeNext() {
    for (int fruitless = 0; fruitless < maxFruitlessPackets; ++fruitless) {
        const int result = avcodec_receive_frame(codec_.get(), frame_.get());
        if (result >= 0) {
            takeFrame();
            return true;
        }
        if (result == AVERROR_EOF) return false;
        if (result == AVERROR(EAGAIN) && !feedDecoder()) return false;
    }
    return false;
}

void AudioStreamDecoder::takeFrame() {
    if (frame_->pts == AV_NOPTS_VALUE) frame_->pts = frame_->best_effort_timestamp;
    skippedAtStart_ = 0;
    frameLength_ = frame_->nb_samples;
    const AVFrameSideData* skips = av_frame_get_side_data(frame_.get(), AV_FRAME_DATA_SKIP_SAMPLES);
    if (!skips || skips->size < 10) return;
    skippedAtStart_ = AV_RL32(skips->data);
    frameLength_ = std::max<std::int64_t>(frameLength_ - AV_RL32(skips->data + 4), 0);
}

bool AudioStreamDecoder::isDiscarded() const {
    return (frame_->flags & AV_FRAME_FLAG_DISCARD) != 0;
}

int AudioStreamDecoder::knownPackets() const {
    return avformat_index_get_entries_count(stream_);
}

bool AudioStreamDecoder::seek(std::int64_t timestamp) {
    isDraining_ = false;
    avcodec_flush_buffers(codec_.get());
    return av_seek_frame(format_.get(), stream_->index, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool AudioStreamDecoder::seekToFirst(std::int64_t timestamp) {
    return openDecoder() && seek(timestamp);
}

bool AudioStreamDecoder::isPlainPCM() const {
    return av_get_exact_bits_per_sample(stream_->codecpar->codec_id) > 0;
}

std::optional<std::int64_t> AudioStreamDecoder::nextPacketLength() {
    if (!readPacket()) return std::nullopt;
    return av_get_audio_frame_duration2(stream_->codecpar, packet_->size);
}

std::optional<std::int64_t> AudioStreamDecoder::lastTimestamp() {
    std::optional<std::int64_t> last;
    while (readPacket()) {
        const auto timestamp = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : packet_->dts;
        if (timestamp != AV_NOPTS_VALUE && (!last || timestamp > *last)) last = timestamp;
    }
    return last;
}

}  // namespace orbinex
