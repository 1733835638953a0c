#include "clip_library.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sndfile.hh>
#include <stdexcept>

namespace orbinex {

ClipLibrary::ClipLibrary(int seconds) : seconds_(seconds) {
    std::string name = (std::filesystem::temp_directory_path() / "orbinex-bench-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no folder for the clips");
    folder_ = name;
    SndfileHandle file((folder_ / "clip.wav").string(), SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2,
                       sampleRate);
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-0.2F, 0.2F);
    std::vector<float> second(2 * sampleRate);
    for (int s = 0; s < seconds; ++s) {
        for (std::size_t i = 0; i < second.size(); ++i)
            second[i] = 0.3F * std::sin(static_cast<float>(i / 2) * 0.0576F) + noise(random);
        file.write(second.data(), static_cast<sf_count_t>(second.size()));
    }
}

ClipLibrary::~ClipLibrary() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string ClipLibrary::clip(const std::string& extension, const std::string& options) const {
    const auto path = folder_ / ("clip" + extension);
    if (std::filesystem::exists(path)) return path;
    const std::string command = "ffmpeg -v error -nostdin -y -i '" + (folder_ / "clip.wav").string() + "' " +
                                options + " '" + path.string() + "'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(extension + " cannot be made");
    return path;
}

std::string ClipLibrary::longClip(const std::string& clip, int seconds) const {
    const auto path = folder_ / ("long" + std::filesystem::path(clip).extension().string());
    const std::string command = "ffmpeg -v error -nostdin -y -stream_loop " +
                                std::to_string(seconds / seconds_) + " -i '" + clip + "' -t " +
                                std::to_string(seconds) + " -c copy '" + path.string() + "'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(path.string() + " cannot be made");
    return path;
}

std::string ClipLibrary::sparseWav(std::uint64_t bytes) const {
    const auto path = folder_ / ("sparse" + std::to_string(bytes) + ".wav");
    const std::vector<short> second(2 * sampleRate, 1000);
    SndfileHandle(path.string(), SFM_WRITE, SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 2, sampleRate)
        .write(second.data(), static_cast<sf_count_t>(second.size()));
    std::filesystem::resize_file(path, bytes);
    // Behind the head's first chunk come the lengths of the file, of the samples in bytes, and in frames.
    const std::uint64_t lengths[] = {bytes - 8, bytes - 128, (bytes - 128) / 4};
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(20);
    file.write(reinterpret_cast<const char*>(lengths), sizeof lengths);
    return path;
}

std::vector<std::string> ClipLibrary::copies(const std::string& clip, std::size_t count) const {
    const std::filesystem::path original(clip);
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < count; ++i) {
        const auto copy = folder_ / ("copy" + std::to_string(i) + original.extension().string());
        std::filesystem::copy_file(original, copy, std::filesystem::copy_options::skip_existing);
        paths.push_back(copy);
    }
    return paths;
}

}  // namespace orbinex
