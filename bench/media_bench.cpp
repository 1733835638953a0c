// What the media themselves cost: opening and reading each container, metering whole files beside the ffmpeg
// command's own meters, and the memory of 24 open sources.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "audio/background/background_source_opener.h"
#include "audio/background/media_threads.h"
#include "audio/codec/open_codec.h"
#include "audio/linux/linux_clip_media.h"
#include "audio/linux/posix_media_file.h"
#include "clip_library.h"
#include "median.h"
#include "support/page_cache.h"

namespace orbinex {
namespace {

using Clock = std::chrono::steady_clock;

struct Container {
    const char* name;
    const char* extension;
    const char* options;
};

constexpr Container containers[] = {
    {"WAV, 16 bit", ".wav", ""},
    {"AIFF, 16 bit", ".aiff", ""},
    {"FLAC", ".flac", ""},
    {"MP3, 128 kbit/s", ".mp3", "-b:a 128k"},
    {"AAC in MP4", ".m4a", "-c:a aac -b:a 192k"},
    {"ALAC in MP4", ".alac.m4a", "-c:a alac"},
    {"24 bit in MOV", ".mov", "-c:a pcm_s24le"},
    {"16 bit in MXF, with video", ".mxf",
     "-f lavfi -i testsrc=size=160x120:rate=25 -map 1:v -map 0:a -shortest -c:v mpeg2video -c:a pcm_s16le"},
    {"AAC in Matroska", ".mkv", "-c:a aac -b:a 192k"},
    {"Opus in Ogg", ".opus", "-c:a libopus -b:a 128k"},
};

double microseconds(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

/// Reads where it is asked, as a background thread does: nothing is kept and nothing is read ahead.
std::shared_ptr<AVAudioClipReader> openHere(const std::string& path) {
    auto reader = AVAudioClipReader::create(openCodec(PosixMediaFile::open(path)));
    if (!reader) throw std::runtime_error(path + " cannot be opened");
    return reader;
}

void openAndSeek(const char* name, const std::string& path) {
    std::array<float, 1024> mono{};
    test::forgetInPageCache(path);
    const double cold = microseconds([&] { openHere(path); });
    std::vector<double> opens;
    for (int i = 0; i < 9; ++i) opens.push_back(microseconds([&] { openHere(path); }));
    const auto reader = openHere(path);
    std::mt19937_64 random(1);
    std::vector<double> reads;
    for (int i = 0; i < 300; ++i) {
        const auto end = static_cast<std::uint64_t>(reader->totalSampleFrames()) - mono.size();
        const auto start = static_cast<std::int64_t>(random() % end);
        reads.push_back(microseconds([&] {
            if (reader->readMono(start, mono.size(), mono).framesRead != mono.size())
                throw std::runtime_error(path + " is not read");
        }));
    }
    std::printf("%-28s %9.2f ms %9.2f ms %11.1f us %11.1f us\n", name, cold / 1e3, median(opens) / 1e3,
                median(reads), *std::ranges::max_element(reads));
    std::fflush(stdout);
}

void openAndSeekAll(const ClipLibrary& library) {
    std::printf("\n%-28s %12s %12s %14s %14s\n", "container, 40 s", "cold open", "warm open", "random read",
                "longest");
    // Loads FFmpeg's module.
    openHere(library.clip(".m4a", "-c:a aac -b:a 192k"));
    for (const auto& container : containers)
        openAndSeek(container.name, library.clip(container.extension, container.options));
    constexpr int hour = 3600;
    openAndSeek("WAV of an hour", library.sparseWav(std::uint64_t{4} * hour * ClipLibrary::sampleRate));
    openAndSeek("WAV of 10 GB", library.sparseWav(10'000'000'000));
    openAndSeek("AAC in MP4 of an hour", library.longClip(library.clip(".m4a", "-c:a aac -b:a 192k"), hour));
    openAndSeek("MP3 of an hour, 320 kbit/s", library.longClip(library.clip(".320.mp3", "-b:a 320k"), hour));
}

double processorSeconds(int whose) {
    rusage usage{};
    ::getrusage(whose, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void meterWholeFiles(const ClipLibrary& library) {
    std::printf("\n%-28s %12s %12s %12s\n", "seconds of sound metered in a", "ours", "astats",
                "volumedetect");
    for (const auto& container : containers) {
        const auto path = library.clip(container.extension, container.options);
        const auto byCommand = [&](const char* filter) {
            const double before = processorSeconds(RUSAGE_CHILDREN);
            const std::string command = "ffmpeg -v error -nostdin -i '" + path + "' -map 0:a -af " + filter +
                                        " -f null - >/dev/null 2>&1";
            if (std::system(command.c_str()) != 0) throw std::runtime_error("ffmpeg fails");
            return library.seconds() / (processorSeconds(RUSAGE_CHILDREN) - before);
        };
        const double before = processorSeconds(RUSAGE_SELF);
        constexpr int times = 5;
        std::array<float, 2048> mono{};
        for (int i = 0; i < times; ++i) {
            const auto reader = openHere(path);
            for (std::int64_t at = 0; at < reader->totalSampleFrames();) {
                const auto read = reader->readMono(at, mono.size(), mono).framesRead;
                if (read == 0) throw std::runtime_error(path + " ends early");
                at += static_cast<std::int64_t>(read);
            }
        }
        const double ours = times * library.seconds() / (processorSeconds(RUSAGE_SELF) - before);
        std::printf("%-28s %12.0f %12.0f %12.0f\n", container.name, ours, byCommand("astats"),
                    byCommand("volumedetect"));
        std::fflush(stdout);
    }
}

/// Of this process, in MiB: what is not shared with others.
double ownMemory() {
    std::ifstream file("/proc/self/smaps_rollup");
    double kibibytes = 0;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("Private_") || line.starts_with("Swap:"))
            kibibytes += std::atof(line.substr(line.find(':') + 1).c_str());
    return kibibytes / 1024;
}

/// In a process of its own, as what was read before leaves memory behind.
void inChild(const std::function<void()>& work) {
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        int status = 0;
        try {
            work();
        } catch (const std::runtime_error& error) {
            std::fprintf(stderr, "bench: %s\n", error.what());
            status = 1;
        }
        std::fflush(stdout);
        ::_exit(status);
    }
    int status = 1;
    if (child < 0 || ::waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error("a child process failed");
}

void loadModule(const ClipLibrary& library) {
    const auto path = library.clip(".m4a", "-c:a aac -b:a 192k");
    inChild([&] {
        const double before = ownMemory();
        const double first = microseconds([&] { openHere(path); });
        const double second = microseconds([&] { openHere(path); });
        std::printf("FFmpeg's module, loaded with the first file that needs it: %.1f ms, %.1f MiB\n",
                    (first - second) / 1e3, ownMemory() - before);
    });
}

/// FFmpeg's module is counted where the kind needs it.
void holdSources(const ClipLibrary& library, const std::string& clip, const char* name) {
    const auto paths = library.copies(clip, 24);
    const double before = ownMemory();
    {
        MediaThreads threads;
        BackgroundSourceOpener opener(std::make_shared<LinuxClipMedia>(openCodec, threads.workers()),
                                      threads.workers());
        std::vector<CachedAudioSource> sources;
        for (const auto& path : paths) {
            std::optional<CachedAudioSource> source;
            while (!(source = opener.open(path))) std::this_thread::sleep_for(std::chrono::milliseconds(2));
            sources.push_back(*source);
        }
        // As while they play, and as if each were the selected track, whose history is read as well.
        std::array<float, 1024> mono{};
        for (int tick = 0; tick < 45; ++tick) {
            for (auto& source : sources)
                if (auto* file = std::get_if<std::shared_ptr<AVAudioClipReader>>(&source))
                    for (int frame = -8; frame < 8; ++frame)
                        (*file)->readMono(100'000 + tick * 3168 + frame * 2000, mono.size(), mono);
            std::this_thread::sleep_for(std::chrono::milliseconds(66));
        }
        std::printf("24 open sources, %-24s %6.1f MiB above the program without (wanted: under 64)\n", name,
                    ownMemory() - before);
    }
    std::fflush(stdout);
}

}  // namespace
}  // namespace orbinex

int main() {
    using namespace orbinex;
    try {
        const ClipLibrary library(40);
        loadModule(library);
        struct Kind {
            const char* name;
            std::string clip;
        };
        const Kind kinds[] = {
            {"WAV", library.clip(".wav")},
            {"FLAC", library.clip(".flac")},
            {"AAC in MP4", library.clip(".m4a", "-c:a aac -b:a 192k")},
            {"Opus in Ogg", library.clip(".opus", "-c:a libopus -b:a 128k")},
        };
        for (const auto& kind : kinds) inChild([&] { holdSources(library, kind.clip, kind.name); });
        openAndSeekAll(library);
        meterWholeFiles(library);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
