#include "audio/ffmpeg/made_media.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "audio/linux/temporary_folder.h"

namespace orbinex::test {

namespace {

constexpr int seconds = 4;

/// A sound to make media of: a rising tone in noise, another in each channel.
struct Source {
    int sampleRate;
    int channelCount;
};
const Source sources[] = {{48000, 2}, {44100, 2}, {96000, 1}, {48000, 6}, {48000, 1}, {22050, 1}};
/// Blows in a quiet tone, which encoders cut into short blocks: the source behind those.
constexpr std::size_t blows = std::size(sources);
constexpr auto blowsInput =
    R"( -f lavfi -i "aevalsrc='0.7*sin(2*PI*200*t)*exp(-25*mod(t,0.25))+0.02*sin(2*PI*3000*t)|)"
    R"(0.6*sin(2*PI*300*t)*exp(-30*mod(t,0.17))':s=44100:d=8")";

struct Recipe {
    const char* name;
    /// Which of the sources it is made of.
    std::size_t source;
    const char* options;
    Exactness exactness = Exactness::exact;
    bool hasVideo = false;
    /// The packets of another medium, in another container.
    const char* copyOf = nullptr;
    /// Frames from the beginning of its pictures to that of its sound.
    std::size_t late = 0;
};
const auto costly = Exactness::costly;
const Recipe recipes[] = {
    {"aac.m4a", 0, "-c:a aac -aac_pns 0"},
    {"aac-44100.m4a", 1, "-c:a aac -aac_pns 0"},
    {"aac-mono-96000.m4a", 2, "-c:a aac -aac_pns 0"},
    {"aac-5.1.mp4", 3, "-c:a aac -aac_pns 0"},
    {"aac-noise.m4a", 0, "-c:a aac", Exactness::madeUpNoise},
    {"aac-fragments.mp4", 0, "-c:a aac -aac_pns 0 -movflags frag_keyframe+empty_moov -frag_duration 500000"},
    {"aac-cut.mp4", 0, "-ss 1.2345 -c:a aac -aac_pns 0"},
    {"aac-two-streams.mp4", 0, "-map 1:a -c:a aac -aac_pns 0"},
    {"aac-late.mov", 0, "-c:v mpeg4 -c:a aac -aac_pns 0 -af asetpts=PTS+0.7/TB -movie_timescale 48000",
     Exactness::exact, true, nullptr, 32'576},
    {"s16-late.mov", 0, "-c:v mpeg4 -c:a pcm_s16le -af asetpts=PTS+0.25/TB", Exactness::exact, true, nullptr,
     12'000},
    {"alac.m4a", 0, "-c:a alac -sample_fmt s16p"},
    {"alac-44100.m4a", 1, "-c:a alac -sample_fmt s32p"},
    {"alac-5.1.m4a", 3, "-c:a alac"},
    {"s16.mov", 0, "-c:a pcm_s16le"},
    {"s24-mono-96000.mov", 2, "-c:a pcm_s24be"},
    {"s16-video.mov", 1, "-c:v mpeg4 -c:a pcm_s16le", Exactness::exact, true},
    {"s24-video.mov", 0, "-c:v mpeg4 -c:a pcm_s24le", Exactness::exact, true},
    {"alaw.mov", 1, "-c:a pcm_alaw"},
    {"mulaw-mono.mov", 4, "-c:a pcm_mulaw"},
    {"aac-video.mov", 0, "-c:v mpeg4 -c:a aac -aac_pns 0", Exactness::exact, true},
    {"s16-25.mxf", 0, "-c:v mpeg2video -c:a pcm_s16le", Exactness::exact, true},
    {"s24-29.97.mxf", 0, "-c:v mpeg2video -r 30000/1001 -c:a pcm_s24le", Exactness::exact, true},
    {"s24-mono-tracks.mxf", 4, "-map 0:a -c:v mpeg2video -c:a pcm_s24le -ac 1", Exactness::exact, true},
    {"s24-29.97.mkv", 0, "", Exactness::exact, false, "s24-29.97.mxf"},
    {"s16.mkv", 1, "-c:a pcm_s16le"},
    {"s16-video.mkv", 0, "-c:v mpeg4 -c:a pcm_s16le", Exactness::exact, true},
    {"flac.mkv", 1, "-c:a flac"},
    {"flac-mono-96000.mkv", 2, "-c:a flac"},
    {"aac.mkv", 1, "-c:a aac -aac_pns 0"},
    {"aac-video.mkv", 0, "-c:v mpeg4 -c:a aac -aac_pns 0", Exactness::exact, true},
    {"ac3.mkv", 0, "-c:a ac3", Exactness::madeUpNoise},
    {"mp3.mkv", 0, "-c:a libmp3lame"},
    {"opus.mkv", 0, "-c:a libopus", costly},
    {"opus.webm", 0, "-c:a libopus", costly},
    {"opus-5.1.webm", 3, "-c:a libopus -mapping_family 1", costly},
    {"opus.ogg", 0, "-c:a libopus", costly},
    {"opus-mono-96000.ogg", 2, "-c:a libopus", costly},
    {"vorbis.ogg", 1, "-c:a libvorbis"},
    {"vorbis.webm", 0, "-c:a libvorbis"},
    {"vorbis-blows.ogg", blows, "-c:a libvorbis -q:a 5"},
    {"vorbis-blows-10.ogg", blows, "-c:a libvorbis -q:a 10 -page_duration 100000"},
    {"vorbis-blows-cut.ogg", blows, "-ss 0.249 -c:a libvorbis -q:a 3"},
    {"vorbis-blows.mkv", blows, "-c:a libvorbis -q:a 5"},
    {"vorbis-blows-copy.webm", blows, "", Exactness::exact, false, "vorbis-blows.ogg"},
    {"aac-blows.m4a", blows, "-c:a aac -aac_pns 0"},
    {"mp3-blows.mp3", blows, "-c:a libmp3lame"},
    {"opus-blows.ogg", blows, "-c:a libopus", costly},
    {"flac.ogg", 0, "-c:a flac", costly},
    {"no-length.flac", 0, "-c:a flac -seekable 0"},
    {"info.mp3", 0, "-c:a libmp3lame -b:a 128k"},
    {"mono-32k.mp3", 4, "-c:a libmp3lame -b:a 32k"},
    {"mpeg2.mp3", 5, "-c:a libmp3lame -b:a 64k"},
    {"no-length.mp3", 1, "-c:a libmp3lame -write_xing 0"},
    {"variable.mp3", 0, "-c:a libmp3lame -q:a 4"},
    {"mp3.wav", 0, "-c:a libmp3lame"},
    {"aac.aac", 1, "-c:a aac -aac_pns 0"},
    {"aac-video.ts", 1, "-c:v mpeg4 -c:a aac -aac_pns 0", Exactness::exact, true},
    {"mp2.ts", 0, "-c:a mp2"},
    {"mp2-blows.mkv", blows, "-c:a mp2 -b:a 96k"},
    {"mp2-video.mpg", 1, "-c:v mpeg2video -c:a mp2", Exactness::exact, true},
    {"ac3-video.vob", 0, "-c:v mpeg2video -c:a ac3", Exactness::madeUpNoise, true},
    {"s302m.ts", 0, "-c:a s302m -strict -2"},
    {"s16.gxf", 4, "-c:v mpeg2video -s 720x576 -c:a pcm_s16le", Exactness::exact, true},
    {"wavpack.wv", 1, "-c:a wavpack", costly},
    {"ima4.mov", 1, "-c:a adpcm_ima_qt", Exactness::coarse},
    {"s16-video.avi", 0, "-c:v mpeg4 -c:a pcm_s16le", Exactness::exact, true},
    {"mp3-video.avi", 1, "-c:v mpeg4 -c:a libmp3lame", Exactness::exact, true},
};

void writeSource(const Source& source, const std::string& path) {
    std::mt19937 random(1);
    std::vector<std::int32_t> samples;
    for (int i = 0; i < source.sampleRate * seconds + 123; ++i) {
        const double time = static_cast<double>(i) / source.sampleRate;
        for (int channel = 0; channel < source.channelCount; ++channel) {
            const double tone = std::sin(6.2831853 * time * (200 + 90 * channel + 400 * time));
            const double noise = static_cast<double>(random() % 2001) / 1000 - 1;
            const double loudness = 0.5 + 0.5 * std::sin(time * (3 + channel));
            samples.push_back(static_cast<std::int32_t>((tone * 0.4 + noise * 0.1 * loudness) * 2147483647));
        }
    }
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size() * 4));
}

void runFFmpeg(const std::string& arguments) {
    const auto command = "ffmpeg -nostdin -loglevel error -y " + arguments;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("the ffmpeg command made no media");
}

std::vector<MadeMedium> makeMedia() {
    const TemporaryFolder folder;
    std::string inputs;
    for (std::size_t i = 0; i < std::size(sources); ++i) {
        const auto path = folder.path("source" + std::to_string(i));
        writeSource(sources[i], path);
        inputs += " -f s32le -ar " + std::to_string(sources[i].sampleRate) + " -ac " +
                  std::to_string(sources[i].channelCount) + " -i " + path;
    }
    inputs += blowsInput;
    inputs += " -f lavfi -i testsrc=s=64x48:r=25:d=" + std::to_string(seconds);
    const auto video = std::to_string(blows + 1);
    std::string outputs;
    std::string copyInputs;
    std::string copyOutputs;
    int copies = 0;
    std::string decodedInputs;
    std::string decodedOutputs;
    std::vector<MadeMedium> media;
    for (const auto& recipe : recipes) {
        const std::string path = folder.path(recipe.name);
        if (recipe.copyOf) {
            copyInputs += " -i " + folder.path(recipe.copyOf);
            copyOutputs += " -map " + std::to_string(copies++) + " -c copy " + path;
        } else {
            if (recipe.hasVideo) outputs += " -map " + video + ":v";
            outputs += " -map " + std::to_string(recipe.source) + ":a " + recipe.options + " " + path;
        }
        // The command's usual decoder of layer 2 rounds by what it has decoded before.
        const bool isLayer2 = std::string_view(recipe.name).starts_with("mp2");
        decodedInputs += (isLayer2 ? " -c:a mp2float -i " : " -i ") + path;
        decodedOutputs += " -map " + std::to_string(media.size()) + ":a:0 -f f32le " + path + ".f32";
        const int sampleRate = recipe.source == blows ? 44100 : sources[recipe.source].sampleRate;
        media.push_back({recipe.name, recipe.exactness, sampleRate, {}, {}});
    }
    runFFmpeg(inputs + outputs);
    runFFmpeg(copyInputs + copyOutputs);
    runFFmpeg(decodedInputs + decodedOutputs);
    for (std::size_t i = 0; i < media.size(); ++i) {
        const auto path = folder.path(media[i].name);
        media[i].bytes = bytesOf(path);
        // Opus knows one rate only.
        if (media[i].name.starts_with("opus")) media[i].sampleRate = 48000;
        const auto decoded = bytesOf(path + ".f32");
        media[i].straight.channelCount =
            recipes[i].source == blows ? 2 : sources[recipes[i].source].channelCount;
        media[i].straight.samples.resize(decoded.size() / sizeof(float));
        std::memcpy(media[i].straight.samples.data(), decoded.data(), decoded.size());
        // The command begins with the first sample; in the movie, silence goes before.
        auto& samples = media[i].straight.samples;
        samples.insert(samples.begin(),
                       recipes[i].late * static_cast<std::size_t>(media[i].straight.channelCount), 0.0F);
    }
    return media;
}

}  // namespace

const std::vector<MadeMedium>& madeMedia() {
    static const auto media = makeMedia();
    return media;
}

const MadeMedium& madeMedium(std::string_view name) {
    const auto found = std::ranges::find(madeMedia(), name, &MadeMedium::name);
    if (found == madeMedia().end()) throw std::runtime_error("no such medium: " + std::string(name));
    return *found;
}

Bytes madeBy(const std::string& arguments, const std::string& name) {
    const TemporaryFolder folder;
    const auto path = folder.path(name);
    runFFmpeg(arguments + " " + path);
    return bytesOf(path);
}

}  // namespace orbinex::test
