// What the codec costs, and how decoding a pointer move stands to copying its bytes.

#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "median_reporter.h"
#include "protocol/control_message.h"
#include "protocol/daw_command.h"
#include "protocol/input_packet.h"
#include "protocol/meter_packet.h"
#include "protocol/session_encoding.h"

namespace orbinex {
namespace {

constexpr std::size_t moveLength = 9;
using MoveBytes = std::array<std::uint8_t, moveLength>;

// Both sides of the comparison stand behind the same kind of call, which the compiler cannot look through.
[[gnu::noinline]] std::optional<DecodedPacket> decodeMove(ByteView bytes) {
    return DecodedPacket::decode(bytes);
}

[[gnu::noinline]] MoveBytes copyMove(ByteView bytes) {
    MoveBytes copy;
    std::memcpy(copy.data(), bytes.data(), copy.size());
    return copy;
}

template <class Operation>
void repeat(benchmark::State& state, const Bytes& input, Operation operation) {
    if constexpr (requires { operation(ByteView()).has_value(); }) {
        // Refusing is quicker than decoding.
        if (!operation(input)) return state.SkipWithError("does not decode");
    }
    for ([[maybe_unused]] auto _ : state) {
        const std::uint8_t* data = input.data();
        benchmark::DoNotOptimize(data);
        auto result = operation(ByteView(data, input.size()));
        benchmark::DoNotOptimize(result);
    }
}

void addDecoder(const char* name, const DecodedPacket& packet) {
    benchmark::RegisterBenchmark(name, [bytes = packet.encode()](benchmark::State& state) {
        repeat(state, bytes, [](ByteView view) { return DecodedPacket::decode(view); });
    });
}

void addDecoder(const char* name, const DAWCommand& command) {
    benchmark::RegisterBenchmark(name, [bytes = ControlMessage{command}.encode()](benchmark::State& state) {
        repeat(state, bytes, [](ByteView view) { return ControlMessage::decode(view); });
    });
}

template <class Value>
void addEncoder(const char* name, Value value, Bytes (*encode)(const Value&)) {
    benchmark::RegisterBenchmark(name, [value, encode](benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            benchmark::DoNotOptimize(value);
            Bytes bytes = encode(value);
            benchmark::DoNotOptimize(bytes);
        }
    });
}

DAWMeterPacket fullMeter() {
    DAWMeterPacket meter = DAWMeterPacket::placeholder();
    meter.channelMeters.resize(maximumChannelMeters,
                               {1, TrackMeterStatus::activeSignal, -12, -18, -9, false});
    meter.spectrumBands.assign(maximumSpectrumBands, 100);
    meter.amplitudeHistory.assign(maximumAmplitudeHistory, 100);
    return meter;
}

void addAll() {
    const Bytes move = DecodedPacket{DecodedPacket::MouseMove{3.5F, -2.0F}}.encode();
    const auto compared = [&](const char* name, auto operation) {
        benchmark::RegisterBenchmark(
            name, [move, operation](benchmark::State& state) { repeat(state, move, operation); })
            ->Repetitions(9)
            ->ReportAggregatesOnly();
    };
    compared("copy 9 bytes", [](ByteView view) { return copyMove(view); });
    compared("decode move", [](ByteView view) { return decodeMove(view); });

    using P = DecodedPacket;
    addDecoder("decode click", P{P::MouseClick{MouseButton::left, 2}});
    addDecoder("decode scroll", P{P::MouseScroll{0, 12.5F}});
    addDecoder("decode button", P{P::MouseButtonChange{MouseButton::right, KeyState::pressed}});
    addDecoder("decode key", P{P::KeyStroke{49, ModifierFlags::command, KeyState::pressed}});
    addDecoder("decode short text", P{P::Text{"a", {}, std::nullopt}});
    addDecoder("decode long text", P{P::Text{"A sentence of some length, gr\u00fc\u00dfend.", {}, 36}});
    addDecoder("decode volume command", DAWCommand{DAWCommand::SetTrackVolume{3, -6.5}});
    addDecoder("decode colour command", DAWCommand{DAWCommand::SetColorCDL{}});

    const DAWSessionSnapshot session = DAWSessionSnapshot::placeholder();
    addEncoder<SessionTelemetry>("encode telemetry",
                                 {"01:02:03:04", 23.976, "EDITOR 19", "Timeline 1", "EDIT", "1X", true},
                                 encodeTelemetry);
    addEncoder<DAWTrackState>("encode track", session.tracks.front(), encodeTrack);
    addEncoder<DAWMeterPacket>("encode full meter", fullMeter(), encodeMeter);
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    orbinex::addAll();
    orbinex::MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double copy = reporter.medians["copy 9 bytes"];
    const double decode = reporter.medians["decode move"];
    if (copy > 0 && decode > 0) {
        std::printf("\nratio  decode move / copy 9 bytes  %.2f  (%.2f ns / %.2f ns; wanted: at most 10)\n",
                    decode / copy, decode, copy);
    }
    return 0;
}
