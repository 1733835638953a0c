#include "audio/av_audio_clip_reader.h"

#include <algorithm>
#include <cmath>

#include "audio/sample_fold.h"

namespace orbinex {

namespace {

/// The thread's own, for the samples of one read after the other, of whatever file: one for each would be
/// cold whenever its turn comes.
PCMBuffer& pcmBufferFor(SampleType type) {
    constexpr int mostChannels = 2;
    thread_local PCMBuffer shorts(SampleType::int16, mostChannels);
    thread_local PCMBuffer floats(SampleType::float32, mostChannels);
    return type == SampleType::int16 ? shorts : floats;
}

template <class Sample>
MonoRead fold(std::span<const Sample> samples, int channelCount, std::span<float> mono) {
    return channelCount >= 2 ? foldStereo(samples, mono) : foldMono(samples, mono);
}

}  // namespace

std::shared_ptr<AVAudioClipReader> AVAudioClipReader::create(std::unique_ptr<AudioFile> audioFile) {
    if (!audioFile || !std::isfinite(audioFile->sampleRate()) || audioFile->sampleRate() <= 0 ||
        audioFile->totalSampleFrames() < 1)
        return nullptr;
    return std::make_shared<AVAudioClipReader>(std::move(audioFile));
}

AVAudioClipReader::AVAudioClipReader(std::unique_ptr<AudioFile> audioFile)
    : audioFile_(std::move(audioFile)),
      sampleRate_(audioFile_->sampleRate()),
      totalSampleFrames_(audioFile_->totalSampleFrames()),
      channelCount_(audioFile_->channelCount()) {}

MonoRead AVAudioClipReader::readMono(std::int64_t startSample, std::size_t maxFrames,
                                     std::span<float> buffer) {
    if (startSample < 0 || startSample >= totalSampleFrames_) return {};
    const auto left = static_cast<std::uint64_t>(totalSampleFrames_ - startSample);
    const auto wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>({left, PCMBuffer::frameCapacity, buffer.size(), maxFrames}));
    if (wanted < 1) return {};
    const SampleType type = audioFile_->sampleType();
    PCMBuffer& pcmBuffer = pcmBufferFor(type);
    const std::size_t frames = std::min(audioFile_->read(startSample, wanted, pcmBuffer), wanted);
    const std::size_t samples = frames * static_cast<std::size_t>(channelCount_);
    const auto mono = buffer.first(frames);
    if (type == SampleType::int16)
        return fold(std::span<const std::int16_t>(pcmBuffer.shorts().first(samples)), channelCount_, mono);
    return fold(std::span<const float>(pcmBuffer.floats().first(samples)), channelCount_, mono);
}

}  // namespace orbinex
