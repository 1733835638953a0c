#include "clip_files.h"

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numbers>
#include <random>
#include <sndfile.hh>

#include "event_loop.h"
#include "sim/r3d_clip_writer.h"

namespace orbinex::demo {

namespace {

constexpr int sampleRate = 48'000;
constexpr int seconds = 20;
constexpr const char* spokenText =
    "The phone shows how loud each track is. It reads the clips' own files, at the place where the playhead "
    "is.";

/// A sample, from -1 to 1, at a frame.
using Sound = std::function<double(int frame)>;

double amplitude(const DemoClip& clip) {
    return std::pow(10, clip.peakDBFS / 20.0);
}

Sound sine(const DemoClip& clip) {
    return [step = 2 * std::numbers::pi * clip.frequency / sampleRate, height = amplitude(clip)](int frame) {
        return height * std::sin(step * frame);
    };
}

/// Rises from 100 Hz by an octave every three seconds.
Sound rising(const DemoClip& clip) {
    return [height = amplitude(clip), phase = 0.0](int frame) mutable {
        phase += 2 * std::numbers::pi * 100 * std::exp2(frame / (3.0 * sampleRate)) / sampleRate;
        return height * std::sin(phase);
    };
}

/// Each sample at one end or the other.
Sound dice(const DemoClip& clip) {
    return [height = amplitude(clip), random = std::mt19937(1)](int) mutable {
        return (random() & 1U) != 0 ? height : -height;
    };
}

std::vector<float> stereo(const Sound& sound) {
    std::vector<float> samples;
    for (int frame = 0; frame < seconds * sampleRate; ++frame)
        samples.insert(samples.end(), 2, static_cast<float>(sound(frame)));
    return samples;
}

/// A series of two files.
void writeCamera(const std::string& path, const Sound& sound) {
    std::vector<R3DFrame> frames;
    for (int frame = 0; frame < seconds * sampleRate; ++frame) {
        const auto sample = static_cast<std::int32_t>(std::lround(sound(frame) * 0x7F'FFFF));
        frames.push_back({sample, sample});
    }
    const auto segments = R3DClipWriter::clip(frames, sampleRate, frames.size() / 2);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        std::string name = path;
        name.replace(name.rfind("001."), 3, "00" + std::to_string(i + 1));
        std::ofstream file(name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(segments[i].data()),
                   static_cast<std::streamsize>(segments[i].size()));
        if (!file) throw Ended{name + " cannot be written"};
    }
}

void write(const std::string& path, int format, const std::vector<float>& samples) {
    SndfileHandle file(path, SFM_WRITE, format, 2, sampleRate);
    if (file.write(samples.data(), static_cast<sf_count_t>(samples.size())) !=
        static_cast<sf_count_t>(samples.size()))
        throw Ended{path + " cannot be written"};
}

}  // namespace

ClipFiles makeClipFiles(const std::string& folder, const RunProgram& run) {
    std::filesystem::create_directories(folder);
    ClipFiles clips{.speech = {.path = folder + "/Interview.wav"},
                    .sweep = {.path = folder + "/Theme.flac", .peakDBFS = -12},
                    .noise = {.path = folder + "/Door.wav", .peakDBFS = -6},
                    .tone = {.path = folder + "/Line-up.m4a", .peakDBFS = -18, .frequency = 1000},
                    .camera = {.path = folder + "/A001_C001_001.R3D", .peakDBFS = -9, .frequency = 250}};
    const auto mustRun = [&](const char* program, const QStringList& arguments) {
        if (!run(program, arguments)) throw Ended{std::string(program) + " cannot make the clips"};
    };
    const auto q = [](const std::string& path) { return QString::fromStdString(path); };

    const std::string voice = folder + "/voice.wav";
    mustRun("espeak-ng", {QStringLiteral("-w"), q(voice), QString::fromUtf8(spokenText)});
    mustRun("ffmpeg",
            {QStringLiteral("-y"), QStringLiteral("-stream_loop"), QStringLiteral("-1"), QStringLiteral("-i"),
             q(voice), QStringLiteral("-t"), QString::number(seconds), q(clips.speech.path)});
    write(clips.sweep.path, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, stereo(rising(clips.sweep)));
    write(clips.noise.path, SF_FORMAT_WAV | SF_FORMAT_PCM_24, stereo(dice(clips.noise)));
    const std::string line = folder + "/line-up.wav";
    write(line, SF_FORMAT_WAV | SF_FORMAT_FLOAT, stereo(sine(clips.tone)));
    mustRun("ffmpeg",
            {QStringLiteral("-y"), QStringLiteral("-i"), q(line), QStringLiteral("-c:a"),
             QStringLiteral("aac"), QStringLiteral("-b:a"), QStringLiteral("192k"), q(clips.tone.path)});
    writeCamera(clips.camera.path, sine(clips.camera));
    return clips;
}

}  // namespace orbinex::demo
