// What a meter tick costs while 32 tracks play, beside plain loops that read and fold the same windows.
// Processor time is that of the ticks and of all background threads; going to sleep between ticks, and waking
// up, is not counted. A tick's own time is what the main thread is held up for.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <kissfft/kiss_fftr.h>
#include <time.h>

#include "audio/background/background_source_opener.h"
#include "audio/background/media_threads.h"
#include "audio/codec/open_codec.h"
#include "audio/fairlight_audio_meter_engine.h"
#include "audio/linux/linux_clip_media.h"
#include "clip_library.h"
#include "median.h"
#include "window_reader.h"

namespace orbinex {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::size_t trackCount = 32;
constexpr int videoRate = 25;
constexpr std::int64_t tickFrames = ClipLibrary::sampleRate * 66 / 1000;
constexpr std::int64_t samplesPerVideoFrame = ClipLibrary::sampleRate / videoRate;
constexpr int rounds = 6;
constexpr int ticksInRound = 60;
/// Between ticks, for what is done in the background. Ticks really come every 66 ms.
constexpr auto pause = std::chrono::milliseconds(12);

/// Processor time, in milliseconds: CLOCK_PROCESS_CPUTIME_ID or CLOCK_THREAD_CPUTIME_ID.
double processorTime(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// What the transport does.
struct Transport {
    bool isPlaying;
    /// Where the playhead is at a tick, in sample frames of the media.
    std::function<std::int64_t(int tick)> position;
    /// Ticks from one jump to the next; 0 without.
    int ticksPerJump = 0;
};

/// The engine as the program has it.
class Meters {
  public:
    explicit Meters(const std::vector<std::string>& paths) {
        for (std::size_t i = 0; i < trackCount; ++i) {
            const auto index = static_cast<std::int64_t>(i + 1);
            tracks_.emplace_back().index = index;
            clips_[index] = {.trackIndex = index, .hasActiveClip = true, .filePath = paths[i % paths.size()]};
        }
        // Until every file is open.
        for (int i = 0; i < 200 && !areAllHeard(); ++i) {
            tick(ClipLibrary::sampleRate, true);
            std::this_thread::sleep_for(pause);
        }
        if (!areAllHeard()) throw std::runtime_error("the clips are not heard");
    }
    void tick(std::int64_t position, bool isPlaying) {
        // Whole video frames, and the rest as the way since the report.
        const std::int64_t frame = position / samplesPerVideoFrame;
        const auto rest = std::chrono::nanoseconds((position - frame * samplesPerVideoFrame) * 1'000'000'000 /
                                                   ClipLibrary::sampleRate);
        packet_ = &engine_.makeMeterPacket({.tracks = tracks_,
                                            .clipMetaByIndex = clips_,
                                            .playheadFrame = frame,
                                            .lastPlayheadUpdateUptime = now_ - rest,
                                            .isPlaying = isPlaying,
                                            .playbackSpeed = "1X",
                                            .framesPerSecond = videoRate,
                                            .selectedTrackIndex = 1,
                                            .editorRunning = true,
                                            .masterVolumeDB = 0,
                                            .masterMuted = false},
                                           now_);
        now_ += std::chrono::milliseconds(66);
        for (const auto& meter : packet_->channelMeters)
            missed_ += meter.status != TrackMeterStatus::activeSignal;
    }
    /// Meters that showed nothing since the last call.
    int missed() { return std::exchange(missed_, 0); }

  private:
    [[nodiscard]] bool areAllHeard() const {
        return packet_ && std::ranges::all_of(packet_->channelMeters, [](const TrackChannelMeter& meter) {
                   return meter.status == TrackMeterStatus::activeSignal;
               });
    }

    MediaThreads threads_;
    BackgroundSourceOpener opener_{std::make_shared<LinuxClipMedia>(openCodec, threads_.workers()),
                                   threads_.workers()};
    FairlightAudioMeterEngine engine_{opener_};
    std::vector<DAWTrackState> tracks_;
    ResolveTrackClips clips_;
    std::chrono::nanoseconds now_ = std::chrono::hours(1);
    const DAWMeterPacket* packet_ = nullptr;
    int missed_ = 0;
};

/// The same windows in a plain loop.
class PlainLoop {
  public:
    using Open = std::unique_ptr<WindowReader> (*)(const std::string& path);

    PlainLoop(const std::vector<std::string>& paths, Open open) {
        for (const auto& path : paths) readers_.push_back(open(path));
    }
    PlainLoop(const PlainLoop&) = delete;
    PlainLoop& operator=(const PlainLoop&) = delete;
    ~PlainLoop() { kiss_fftr_free(plan_); }
    void tick(std::int64_t position, bool isPlaying) {
        for (std::size_t i = 0; i < trackCount; ++i) {
            auto& reader = *readers_[i % readers_.size()];
            heard_ += reader.read(position, isPlaying ? 1024 : 512, mono_.data()).framesRead;
            if (i != 0) continue;
            kiss_fftr(plan_, mono_.data(), bins_.data());
            for (int frame = -8; frame < 8; ++frame)
                heard_ += reader.read(position + frame * samplesPerVideoFrame, 256, mono_.data()).framesRead;
        }
    }
    int missed() { return heard_ == 0 ? -1 : 0; }

  private:
    std::vector<std::unique_ptr<WindowReader>> readers_;
    kiss_fftr_cfg plan_ = kiss_fftr_alloc(1024, 0, nullptr, nullptr);
    std::array<float, 2048> mono_{};
    std::array<kiss_fft_cpx, 513> bins_{};
    std::size_t heard_ = 0;
};

struct Cost {
    std::vector<double> processMs;
    std::vector<double> tickMs;
    /// Of ticks right after a jump.
    std::vector<double> jumpMs;
    int missed = 0;
};

template <class Runner>
void runRound(Runner& runner, const Transport& transport, int firstTick, Cost& cost) {
    const double process = processorTime(CLOCK_PROCESS_CPUTIME_ID);
    const double thread = processorTime(CLOCK_THREAD_CPUTIME_ID);
    double inTicks = 0;
    for (int tick = firstTick; tick < firstTick + ticksInRound; ++tick) {
        const double before = processorTime(CLOCK_THREAD_CPUTIME_ID);
        const auto start = Clock::now();
        runner.tick(transport.position(tick), transport.isPlaying);
        cost.tickMs.push_back(Milliseconds(Clock::now() - start).count());
        if (transport.ticksPerJump > 0 && tick % transport.ticksPerJump == 0)
            cost.jumpMs.push_back(cost.tickMs.back());
        inTicks += processorTime(CLOCK_THREAD_CPUTIME_ID) - before;
        std::this_thread::sleep_for(pause);
    }
    const double onThisThread = processorTime(CLOCK_THREAD_CPUTIME_ID) - thread;
    const double inBackground = processorTime(CLOCK_PROCESS_CPUTIME_ID) - process - onThisThread;
    cost.processMs.push_back((inTicks + inBackground) / ticksInRound);
    cost.missed += runner.missed();
}

struct Compared {
    Cost ours;
    Cost plain;
    [[nodiscard]] double ratio() const { return median(ours.processMs) / median(plain.processMs); }
};

/// Both in turn, round by round, so that what else the machine does meets both.
Compared compare(Meters& meters, PlainLoop& plain, const Transport& transport) {
    Compared result;
    for (int round = 0; round < rounds; ++round) {
        runRound(meters, transport, round * ticksInRound, result.ours);
        runRound(plain, transport, round * ticksInRound, result.plain);
    }
    return result;
}

void print(const char* name, const char* beside, const char* wanted, const Compared& compared) {
    const auto& ours = compared.ours;
    std::printf(
        "%-24s ours %.3f ms a tick, %s %.3f: ratio %.3f (wanted: %s); the tick itself %.3f, longest %.2f",
        name, median(ours.processMs), beside, median(compared.plain.processMs), compared.ratio(), wanted,
        median(ours.tickMs), *std::ranges::max_element(ours.tickMs));
    if (!ours.jumpMs.empty())
        std::printf("; right after a jump %.2f, longest %.2f", median(ours.jumpMs),
                    *std::ranges::max_element(ours.jumpMs));
    if (ours.missed > 0) std::printf("; %d meters came late", ours.missed);
    std::printf("\n");
    std::fflush(stdout);
}

void compareKind(const ClipLibrary& library, const std::string& clip, const char* kind, const char* beside,
                 const char* wantedPlaying, const char* wantedPaused, PlainLoop::Open open) {
    const std::int64_t start = 2 * ClipLibrary::sampleRate;
    const Transport playing{true, [&](int tick) { return start + tick * tickFrames; }};
    const Transport paused{false, [&](int) { return start + 5 * samplesPerVideoFrame; }};
    // A jump each ten ticks, with some play after it.
    const Transport jumping{true,
                            [&](int tick) {
                                std::mt19937 random(static_cast<unsigned>(tick / 10));
                                const auto end = (library.seconds() - 4) * ClipLibrary::sampleRate;
                                return static_cast<std::int64_t>(random()) % end + start +
                                       tick % 10 * tickFrames;
                            },
                            10};
    const auto paths = library.copies(clip, 24);
    Meters meters(paths);
    PlainLoop plain(paths, open);
    print((std::string(kind) + ", playing").c_str(), beside, wantedPlaying, compare(meters, plain, playing));
    if (*wantedPaused)
        print((std::string(kind) + ", paused").c_str(), beside, wantedPaused, compare(meters, plain, paused));
    print((std::string(kind) + ", jumping").c_str(), beside, "no tick over 20 ms",
          compare(meters, plain, jumping));
}

void compareAll() {
    const ClipLibrary library(40);
    std::printf("32 stereo tracks from 24 files at 48 kHz, medians of %d rounds of %d ticks\n", rounds,
                ticksInRound);
    compareKind(library, library.clip(".wav"), "WAV", "pread()", "at most 1.3", "", wavWindowReader);
    {
        const auto paths = library.copies(library.clip(".wav"), trackCount);
        Meters meters(paths);
        PlainLoop plain(paths, wavWindowReader);
        print("WAV, 32 files, playing", "pread()", "-",
              compare(meters, plain, {true, [](int tick) { return 96'000 + tick * tickFrames; }}));
    }
    compareKind(library, library.clip(".flac"), "FLAC", "libsndfile seeking", "at most 0.5", "",
                sndfileWindowReader);
    compareKind(library, library.clip(".m4a", "-c:a aac -b:a 192k"), "AAC", "FFmpeg seeking", "at most 1",
                "at most 0.05", libavWindowReader);
}

}  // namespace
}  // namespace orbinex

int main() {
    try {
        orbinex::compareAll();
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
