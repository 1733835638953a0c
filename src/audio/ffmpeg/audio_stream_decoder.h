#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "audio/ffmpeg/media_io_context.h"

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct AVStream;

namespace orbinex {

/// Decodes the first audio stream of a media file, frame by frame. Only the bytes of that file are used: what
/// refers to other files or addresses finds them closed.
class AudioStreamDecoder {
  public:
    /// Nothing when the file is no container of those that are allowed, has no audio stream, or no decoder
    /// fits. `media` must outlive it.
    static std::unique_ptr<AudioStreamDecoder> open(MediaFile& media);
    AudioStreamDecoder(const AudioStreamDecoder&) = delete;
    AudioStreamDecoder& operator=(const AudioStreamDecoder&) = delete;
    ~AudioStreamDecoder();

    /// From here on this many bytes may be read.
    void grant(std::uint64_t bytes) { io_.grant(bytes); }
    /// True once bytes that the file should have could not be had. The decoder is then of no more use.
    [[nodiscard]] bool hasFailed() const { return io_.hasFailed(); }
    /// True when nothing more is read: after a failure for good, else until more bytes are granted; before it
    /// goes on it must seek then. What it has learnt of where packets are, it keeps.
    [[nodiscard]] bool hasStopped() const { return io_.hasFailed() || io_.isExhausted(); }

    [[nodiscard]] const AVStream& stream() const { return *stream_; }
    /// The container's word for how long the stream is, in its time base; nothing when it has none.
    [[nodiscard]] std::optional<std::int64_t> duration() const;

    /// Where MOV and its kin with pictures begin, in the stream's time base; nothing for all else.
    [[nodiscard]] std::optional<std::int64_t> startOfMovie() const;

    /// True for Ogg, whose packets have no timestamps of their own. Near the end they are right only when
    /// reading began a few pages before.
    [[nodiscard]] bool isOgg() const;
    /// True when timestamps after a seek are not to be relied on at all.
    [[nodiscard]] bool losesItsPlace() const;

    /// Decodes the next frame; packets that cannot be decoded are passed over. False at the end, after a
    /// failure, and when many packets in a row gave none.
    bool decodeNext();
    /// The frame decoded last, with its timestamp in `pts` where one is known.
    [[nodiscard]] const AVFrame& frame() const { return *frame_; }
    /// Samples at the beginning of that frame that are not to be heard, as the container tells.
    [[nodiscard]] std::int64_t skippedAtStart() const { return skippedAtStart_; }
    /// How many of its samples are to be heard, or are before those that are.
    [[nodiscard]] std::int64_t frameLength() const { return frameLength_; }
    /// True when the container tells to hear nothing of that frame.
    [[nodiscard]] bool isDiscarded() const;

    /// Packets whose places are known. Of many only some are remembered.
    [[nodiscard]] int knownPackets() const;

    /// Goes on at a packet whose timestamp is not after this one where the container can tell. False when it
    /// cannot.
    bool seek(std::int64_t timestamp);
    /// The same, for the stream's first packet: with a decoder that has decoded nothing, as some remember
    /// what they decoded before a seek.
    bool seekToFirst(std::int64_t timestamp);
    /// True for samples as they are, of which a packet's bytes tell how many there are.
    [[nodiscard]] bool isPlainPCM() const;
    /// Reads on, decoding none. Returns the next packet's length in frames, which is known of plain PCM;
    /// nothing at the end.
    std::optional<std::int64_t> nextPacketLength();
    /// Reads packets to the end, decoding none. Returns the last timestamp of one; nothing when there was
    /// none.
    std::optional<std::int64_t> lastTimestamp();

  private:
    struct FreeFormat {
        void operator()(AVFormatContext* format) const;
    };
    struct FreeCodec {
        void operator()(AVCodecContext* codec) const;
    };
    struct FreePacket {
        void operator()(AVPacket* packet) const;
    };
    struct FreeFrame {
        void operator()(AVFrame* frame) const;
    };

    explicit AudioStreamDecoder(MediaFile& media);
    bool openContainer();
    bool findStream();
    bool openDecoder();
    bool readPacket();
    bool feedDecoder();
    void takeFrame();

    MediaFile& media_;
    MediaIOContext io_;
    std::unique_ptr<AVFormatContext, FreeFormat> format_;
    std::unique_ptr<AVCodecContext, FreeCodec> codec_;
    std::unique_ptr<AVPacket, FreePacket> packet_;
    std::unique_ptr<AVFrame, FreeFrame> frame_;
    AVStream* stream_ = nullptr;
    bool isDraining_ = false;
    std::int64_t skippedAtStart_ = 0;
    std::int64_t frameLength_ = 0;
};

}  // namespace orbinex
