// What the meters' arithmetic costs: folding a window to mono beside a plain loop, and the spectrum's
// transform beside the definition and beside FFTW.

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <kissfft/kiss_fftr.h>

#include "audio/sample_fold.h"
#include "audio/spectrum_analyzer.h"
#include "median_reporter.h"
#include "plain_fold.h"

namespace orbinex {
namespace {

constexpr std::size_t frames = 1024;

template <class Sample>
std::vector<Sample> noise(std::size_t count) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> sample(-32'768, 32'767);
    std::vector<Sample> samples(count);
    for (auto& value : samples)
        value = static_cast<Sample>(static_cast<float>(sample(random)) /
                                    (std::is_same_v<Sample, float> ? 32'768.0F : 1.0F));
    return samples;
}

template <class Sample>
void plain(benchmark::State& state) {
    const auto samples = noise<Sample>(2 * frames);
    std::array<float, frames> mono{};
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(plainFold(samples.data(), frames, mono.data()));
        benchmark::ClobberMemory();
    }
}

template <class Sample>
void ours(benchmark::State& state) {
    const auto samples = noise<Sample>(2 * frames);
    std::array<float, frames> mono{};
    std::array<float, frames> plainMono{};
    const auto expected = plainFold(samples.data(), frames, plainMono.data());
    const auto result = foldStereo(std::span<const Sample>(samples), mono);
    if (mono != plainMono || result.peak != expected.peak || std::fabs(result.rms - expected.rms) > 1e-5F)
        state.SkipWithError("the results differ");
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(foldStereo(std::span<const Sample>(samples), mono));
        benchmark::ClobberMemory();
    }
}

void kiss(benchmark::State& state) {
    const auto samples = noise<float>(frames);
    std::array<kiss_fft_cpx, frames / 2 + 1> bins{};
    const auto plan = kiss_fftr_alloc(static_cast<int>(frames), 0, nullptr, nullptr);
    for ([[maybe_unused]] auto _ : state) {
        kiss_fftr(plan, samples.data(), bins.data());
        benchmark::DoNotOptimize(bins);
    }
    kiss_fftr_free(plan);
}

void fftw(benchmark::State& state) {
    auto samples = noise<float>(frames);
    std::array<fftwf_complex, frames / 2 + 1> bins{};
    const auto plan =
        fftwf_plan_dft_r2c_1d(static_cast<int>(frames), samples.data(), bins.data(), FFTW_ESTIMATE);
    samples = noise<float>(frames);
    for ([[maybe_unused]] auto _ : state) {
        fftwf_execute(plan);
        benchmark::DoNotOptimize(bins);
    }
    fftwf_destroy_plan(plan);
}

void definition(benchmark::State& state) {
    const auto samples = noise<float>(frames);
    std::array<std::array<float, 2>, frames> turns{};
    for (std::size_t n = 0; n < frames; ++n) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(frames);
        turns[n] = {static_cast<float>(std::cos(angle)), static_cast<float>(-std::sin(angle))};
    }
    std::array<std::array<float, 2>, frames / 2 + 1> bins{};
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t k = 0; k < bins.size(); ++k) {
            float real = 0;
            float imaginary = 0;
            for (std::size_t n = 0; n < frames; ++n) {
                const auto& turn = turns[k * n % frames];
                real += samples[n] * turn[0];
                imaginary += samples[n] * turn[1];
            }
            bins[k] = {real, imaginary};
        }
        benchmark::DoNotOptimize(bins);
    }
}

void wholeSpectrum(benchmark::State& state) {
    const auto samples = noise<float>(frames);
    SpectrumAnalyzer analyzer;
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(analyzer.analyze(samples, 0.5));
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    using namespace orbinex;
    const std::pair<const char*, void (*)(benchmark::State&)> all[] = {
        {"plain fold, 16 bit", plain<std::int16_t>}, {"fold, 16 bit", ours<std::int16_t>},
        {"plain fold, float", plain<float>},         {"fold, float", ours<float>},
        {"transform: the definition", definition},   {"transform: FFTW", fftw},
        {"transform: KissFFT, which we use", kiss},  {"spectrum: window, transform, bands", wholeSpectrum},
    };
    for (const auto& [name, run] : all)
        benchmark::RegisterBenchmark(name, run)->Repetitions(9)->ReportAggregatesOnly();
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const auto printRatio = [&](const char* one, const char* other, const char* wanted) {
        const double above = reporter.medians[one];
        const double below = reporter.medians[other];
        if (above > 0 && below > 0)
            std::printf("ratio  %s / %s  %.3g%s\n", one, other, above / below, wanted);
    };
    std::printf("\n");
    printRatio("plain fold, 16 bit", "fold, 16 bit", "  (wanted: at least 3)");
    printRatio("plain fold, float", "fold, float", "  (wanted: at least 3)");
    printRatio("transform: KissFFT, which we use", "transform: the definition", "");
    printRatio("transform: KissFFT, which we use", "transform: FFTW", "");
    return 0;
}
