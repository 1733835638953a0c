#include "window_reader.h"

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}
#include <sndfile.hh>

#include <fcntl.h>
#include <unistd.h>

#include "plain_fold.h"

namespace orbinex {

namespace {

constexpr std::size_t mostFrames = 2048;

class WavWindowReader final : public WindowReader {
  public:
    explicit WavWindowReader(const std::string& path) : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (fd_ < 0) throw std::runtime_error(path);
    }
    ~WavWindowReader() override { ::close(fd_); }
    MonoRead read(std::int64_t start, std::size_t frames, float* mono) override {
        constexpr std::int64_t head = 44;
        constexpr std::int64_t frameBytes = 4;
        const auto count =
            ::pread(fd_, samples_.data(), frames * frameBytes, static_cast<off_t>(head + start * frameBytes));
        return count <= 0 ? MonoRead{}
                          : plainFold(samples_.data(), static_cast<std::size_t>(count) / frameBytes, mono);
    }

  private:
    int fd_;
    std::array<std::int16_t, 2 * mostFrames> samples_{};
};

class SndfileWindowReader final : public WindowReader {
  public:
    explicit SndfileWindowReader(const std::string& path) : file_(path) {
        if (!file_) throw std::runtime_error(path);
    }
    MonoRead read(std::int64_t start, std::size_t frames, float* mono) override {
        if (file_.seek(start, SEEK_SET) < 0) return {};
        const auto count = file_.readf(samples_.data(), static_cast<sf_count_t>(frames));
        return count <= 0 ? MonoRead{} : plainFold(samples_.data(), static_cast<std::size_t>(count), mono);
    }

  private:
    SndfileHandle file_;
    std::array<float, 2 * mostFrames> samples_{};
};

/// For planar floats at a rate that is the stream's time base, as AAC in MP4 is.
class LibavWindowReader final : public WindowReader {
  public:
    explicit LibavWindowReader(const std::string& path) {
        const AVCodec* codec = nullptr;
        if (avformat_open_input(&format_, path.c_str(), nullptr, nullptr) < 0 ||
            avformat_find_stream_info(format_, nullptr) < 0 ||
            (stream_ = av_find_best_stream(format_, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0)) < 0)
            throw std::runtime_error(path);
        decoder_ = avcodec_alloc_context3(codec);
        avcodec_parameters_to_context(decoder_, format_->streams[stream_]->codecpar);
        decoder_->pkt_timebase = format_->streams[stream_]->time_base;
        decoder_->thread_count = 1;
        if (avcodec_open2(decoder_, codec, nullptr) < 0) throw std::runtime_error(path);
    }
    ~LibavWindowReader() override {
        av_packet_free(&packet_);
        av_frame_free(&frame_);
        avcodec_free_context(&decoder_);
        avformat_close_input(&format_);
    }
    MonoRead read(std::int64_t start, std::size_t frames, float* mono) override {
        constexpr std::int64_t preRoll = 2048;
        av_seek_frame(format_, stream_, std::max<std::int64_t>(start - preRoll, 0), AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(decoder_);
        std::size_t count = 0;
        while (count < frames && av_read_frame(format_, packet_) >= 0) {
            if (packet_->stream_index == stream_ && avcodec_send_packet(decoder_, packet_) >= 0)
                while (avcodec_receive_frame(decoder_, frame_) >= 0) take(start, frames, count);
            av_packet_unref(packet_);
        }
        return count == 0 ? MonoRead{} : plainFold(samples_.data(), count, mono);
    }

  private:
    void take(std::int64_t start, std::size_t frames, std::size_t& count) {
        const std::int64_t first = frame_->best_effort_timestamp;
        const auto* left = reinterpret_cast<const float*>(frame_->extended_data[0]);
        const auto* right = reinterpret_cast<const float*>(frame_->extended_data[1]);
        for (int i = 0; i < frame_->nb_samples && count < frames; ++i) {
            if (first + i < start) continue;
            samples_[2 * count] = left[i];
            samples_[2 * count + 1] = right[i];
            ++count;
        }
        av_frame_unref(frame_);
    }

    AVFormatContext* format_ = nullptr;
    AVCodecContext* decoder_ = nullptr;
    AVPacket* packet_ = av_packet_alloc();
    AVFrame* frame_ = av_frame_alloc();
    int stream_ = -1;
    std::array<float, 2 * mostFrames> samples_{};
};

}  // namespace

std::unique_ptr<WindowReader> wavWindowReader(const std::string& path) {
    return std::make_unique<WavWindowReader>(path);
}
std::unique_ptr<WindowReader> sndfileWindowReader(const std::string& path) {
    return std::make_unique<SndfileWindowReader>(path);
}
std::unique_ptr<WindowReader> libavWindowReader(const std::string& path) {
    return std::make_unique<LibavWindowReader>(path);
}

}  // namespace orbinex
