#include "audio/sndfile/sndfile_audio_file.h"

#include <algorithm>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include <sndfile.h>

#include "audio/sndfile/media_file_io.h"

namespace orbinex {

namespace {

/// Samples of all channels that are read at once where only two channels are wanted.
constexpr std::size_t scratchSamples = 8192;
/// Frames that are read and thrown away rather than sought over in compressed media.
constexpr std::int64_t skippedFrames = 4096;

struct CloseSndfile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

bool isUncompressed(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_PCM_16:
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_FLOAT:
        case SF_FORMAT_DOUBLE:
        case SF_FORMAT_ULAW:
        case SF_FORMAT_ALAW: return (format & SF_FORMAT_TYPEMASK) != SF_FORMAT_FLAC;
        default: return false;
    }
}

/// True for what libsndfile reads as exactly as we promise. After a seek in Ogg it is not where it says. In
/// MPEG audio it guesses the length where the file does not tell it, the last bits depend on where reading
/// began, and it takes for it whatever has a frame header somewhere.
bool isExact(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_ALAC_16:
        case SF_FORMAT_ALAC_20:
        case SF_FORMAT_ALAC_24:
        case SF_FORMAT_ALAC_32:
        case SF_FORMAT_IMA_ADPCM:
        case SF_FORMAT_MS_ADPCM: return true;
        default: return isUncompressed(format) || (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC;
    }
}

sf_count_t readFrames(SNDFILE* file, std::int16_t* samples, std::size_t frames) {
    return sf_readf_short(file, samples, static_cast<sf_count_t>(frames));
}
sf_count_t readFrames(SNDFILE* file, float* samples, std::size_t frames) {
    return sf_readf_float(file, samples, static_cast<sf_count_t>(frames));
}

}  // namespace

/// The file as libsndfile has it open.
class SndfileAudioFile::Opened {
  public:
    /// Nothing when libsndfile does not read it. `length` is what the file had once.
    static std::unique_ptr<Opened> open(MediaFile& media, sf_count_t length) {
        auto opened = std::unique_ptr<Opened>(new Opened(media, length));
        auto callbacks = MediaFileIO::callbacks();
        opened->file_.reset(sf_open_virtual(&callbacks, SFM_READ, &opened->info_, &opened->io_));
        if (!opened->file_ || !opened->isUsable()) return nullptr;
        opened->makeScratch();
        return opened;
    }

    /// The most bytes that the file had.
    [[nodiscard]] sf_count_t longest() const { return io_.longest(); }
    [[nodiscard]] const SF_INFO& info() const { return info_; }
    [[nodiscard]] int channelCount() const { return std::min(info_.channels, 2); }
    [[nodiscard]] SampleType sampleType() const {
        const int subtype = info_.format & SF_FORMAT_SUBMASK;
        const bool isInteger = subtype == SF_FORMAT_PCM_16 || subtype == SF_FORMAT_ALAC_16;
        return isInteger ? SampleType::int16 : SampleType::float32;
    }
    [[nodiscard]] bool isUncompressed() const { return orbinex::isUncompressed(info_.format); }
    /// True when the bytes failed us since the file was opened; what libsndfile then believes of compressed
    /// media is not known.
    [[nodiscard]] bool hasFailed() const { return io_.hasFailed(); }
    /// After a failure in uncompressed media, of which nothing is remembered but the place.
    void forgetFailure() {
        io_.forgetFailure();
        position_ = -1;
    }
    [[nodiscard]] bool hasSameSamplesAs(const Opened& other) const {
        return info_.samplerate == other.info_.samplerate && channelCount() == other.channelCount() &&
               sampleType() == other.sampleType();
    }

    std::size_t read(std::int64_t start, std::size_t count, PCMBuffer& buffer) {
        if (sampleType() == SampleType::int16) return read(start, count, buffer.shorts());
        return read(start, count, buffer.floats());
    }

  private:
    Opened(MediaFile& media, sf_count_t length) : io_(media, length) {}

    [[nodiscard]] bool isUsable() const {
        // Of FLAC that does not tell its length it says the most that it can count.
        return info_.channels >= 1 && info_.samplerate >= 1 && info_.frames >= 1 &&
               info_.frames < SF_COUNT_MAX && info_.seekable != 0 && isExact(info_.format);
    }

    void makeScratch() {
        const auto samples = std::max(scratchSamples, static_cast<std::size_t>(info_.channels));
        if (isUncompressed() && info_.channels <= 2) return;
        if (sampleType() == SampleType::int16)
            std::get<std::vector<std::int16_t>>(scratch_).resize(samples);
        else
            std::get<std::vector<float>>(scratch_).resize(samples);
    }

    template <class Sample>
    std::size_t read(std::int64_t start, std::size_t count, std::span<Sample> samples) {
        if (!moveTo<Sample>(start)) return 0;
        if (info_.channels <= 2) return readOn(samples.data(), count);
        std::size_t done = 0;
        while (done < count) {
            const auto [read, wanted] = readToScratch<Sample>(count - done);
            const auto channels = static_cast<std::size_t>(info_.channels);
            const auto& scratch = std::get<std::vector<Sample>>(scratch_);
            for (std::size_t i = 0; i < read; ++i)
                std::copy_n(&scratch[i * channels], 2, &samples[(done + i) * 2]);
            done += read;
            if (read < wanted) break;
        }
        return done;
    }

    template <class Sample>
    bool moveTo(std::int64_t start) {
        if (position_ >= 0 && !isUncompressed() && start - position_ <= skippedFrames) {
            while (position_ >= 0 && position_ < start)
                readToScratch<Sample>(static_cast<std::size_t>(start - position_));
        }
        if (position_ != start) position_ = sf_seek(file_.get(), start, SEEK_SET);
        return position_ == start;
    }

    struct Progress {
        std::size_t read;
        std::size_t wanted;
    };
    /// At most `count` frames, as many as there is room for.
    template <class Sample>
    Progress readToScratch(std::size_t count) {
        auto& scratch = std::get<std::vector<Sample>>(scratch_);
        const auto wanted = std::min(count, scratch.size() / static_cast<std::size_t>(info_.channels));
        return {readOn(scratch.data(), wanted), wanted};
    }

    template <class Sample>
    std::size_t readOn(Sample* samples, std::size_t frames) {
        const auto got = std::max<sf_count_t>(readFrames(file_.get(), samples, frames), 0);
        // Where libsndfile stands after a short read is its own affair.
        position_ = static_cast<std::size_t>(got) == frames ? position_ + got : -1;
        return std::min(static_cast<std::size_t>(got), frames);
    }

    MediaFileIO io_;
    SF_INFO info_{};
    std::unique_ptr<SNDFILE, CloseSndfile> file_;
    /// Where frames of more channels, and those that are passed over, are read to. One of the two is used.
    std::tuple<std::vector<std::int16_t>, std::vector<float>> scratch_;
    /// The frame that libsndfile reads next; below 0 when that is not known.
    std::int64_t position_ = -1;
};

std::unique_ptr<SndfileAudioFile> SndfileAudioFile::open(std::unique_ptr<MediaFile>& media) {
    if (!media) return nullptr;
    auto opened = Opened::open(*media, 0);
    if (!opened || opened->hasFailed()) return nullptr;
    return std::unique_ptr<SndfileAudioFile>(new SndfileAudioFile(std::move(media), std::move(opened)));
}

SndfileAudioFile::SndfileAudioFile(std::unique_ptr<MediaFile> media, std::unique_ptr<Opened> opened)
    : media_(std::move(media)),
      opened_(std::move(opened)),
      sampleRate_(opened_->info().samplerate),
      totalSampleFrames_(opened_->info().frames) {}

SndfileAudioFile::~SndfileAudioFile() = default;

int SndfileAudioFile::channelCount() const {
    return opened_->channelCount();
}
SampleType SndfileAudioFile::sampleType() const {
    return opened_->sampleType();
}
bool SndfileAudioFile::prefersReadingOn() const {
    return !opened_->isUncompressed();
}

std::size_t SndfileAudioFile::read(std::int64_t start, std::size_t count, PCMBuffer& buffer) {
    if (start < 0 || start >= totalSampleFrames_) return 0;
    if (opened_->hasFailed() && !recover()) return 0;
    const auto left = static_cast<std::uint64_t>(totalSampleFrames_ - start);
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>({left, count, PCMBuffer::frameCapacity}));
    const auto read = opened_->read(start, wanted, buffer);
    // Some decoders hide that bytes were missing.
    return opened_->hasFailed() ? 0 : read;
}

bool SndfileAudioFile::recover() {
    // These are read on the main thread, where a file is not opened, and bytes may just have been late.
    if (opened_->isUncompressed()) {
        opened_->forgetFailure();
        return true;
    }
    auto opened = Opened::open(*media_, opened_->longest());
    if (!opened || opened->hasFailed() || !opened->hasSameSamplesAs(*opened_)) return false;
    opened_ = std::move(opened);
    return true;
}

}  // namespace orbinex
