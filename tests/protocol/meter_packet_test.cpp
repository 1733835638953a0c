#include "protocol/meter_packet.h"

#include <limits>
#include <numeric>

#include <gtest/gtest.h>

#include "protocol/control_message.h"
#include "protocol/meter_scale.h"
#include "support/allocation_counter.h"
#include "support/byte_transcript.h"

using namespace orbinex;
using orbinex::test::hex;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(MeterScale, givesTheByteOfALevel) {
    const std::pair<double, int> cases[] = {
        {0, 255},  {12, 255},   {-6, 219},     {-18, 173},     {-48, 102},      {-96, 51},
        {-288, 0}, {-300, 0},   {-192, 26},    {-3, 237},      {-12, 196},      {-33, 138},
        {-72, 77}, {-1e308, 0}, {infinity, 0}, {-infinity, 0}, {notANumber, 0},
    };
    for (const auto& [dB, byte] : cases) EXPECT_EQ(meterByte(dB), byte) << dB;
}

TEST(MeterScale, runsBackwardsForEveryByte) {
    for (int byte = 0; byte <= 255; ++byte) {
        const double dB = dbFromMeterPosition(byte / 255.0);
        EXPECT_EQ(meterByte(dB), byte) << dB;
        EXPECT_NEAR(meterPosition(dB), byte / 255.0, 1e-12);
    }
    EXPECT_EQ(dbFromMeterPosition(1), 0);
    EXPECT_EQ(dbFromMeterPosition(7), 0);
    EXPECT_EQ(dbFromMeterPosition(0), -288);
    EXPECT_EQ(dbFromMeterPosition(-1), -288);
    EXPECT_EQ(dbFromMeterPosition(infinity), -288);
    EXPECT_EQ(dbFromMeterPosition(notANumber), -288);
}

DAWMeterPacket example() {
    DAWMeterPacket packet;
    packet.sequence = 0x1234;
    packet.timestampMs = 0x89ABCDEF;
    packet.selectedTrackIndex = 2;
    packet.selectedTrackStatus = TrackMeterStatus::activeSignal;
    packet.channelMeters = {{1, TrackMeterStatus::stale, 0, -288, 0, true},
                            {0, TrackMeterStatus::disconnected, -288, -288, -288, false}};
    packet.spectrumBands = {7, 8, 9};
    packet.amplitudeHistory = {0xFE};
    return packet;
}

constexpr const char* exampleBytes =
    "17 34 12 EF CD AB 89 02 00 02 01 83 FF 00 FF 00 04 00 00 00 03 07 08 09 01 FE";

TEST(MeterRecord, isWrittenInOrderAndReadBack) {
    EXPECT_EQ(encodeMeter(example()), hex(exampleBytes));
    EXPECT_EQ(ControlMessage::decode(hex(exampleBytes)), ControlMessage{example()});
    EXPECT_EQ(ControlMessage{example()}.encode(), hex(exampleBytes));
}

TEST(MeterRecord, asksForItsMemoryOnce) {
    const DAWMeterPacket packet = example();
    EXPECT_EQ(test::allocationsDuring([&] { static_cast<void>(encodeMeter(packet)); }), 1U);
}

TEST(MeterRecord, carriesNoMoreThanItsMaxima) {
    DAWMeterPacket packet;
    for (std::int64_t i = 0; i < 14; ++i) packet.channelMeters.push_back({.trackIndex = i});
    packet.spectrumBands.resize(40);
    std::iota(packet.spectrumBands.begin(), packet.spectrumBands.end(), std::uint8_t{1});
    packet.amplitudeHistory.assign(300, 5);
    const Bytes message = encodeMeter(packet);
    EXPECT_EQ(message.size(), 120U);
    EXPECT_EQ(message[9], 12);

    packet.channelMeters.resize(12);
    packet.spectrumBands.resize(24);
    packet.amplitudeHistory.resize(24);
    EXPECT_EQ(decodeMeter(message), packet);
}

TEST(MeterRecord, limitsIndicesToAByte) {
    for (const auto& [index, byte] :
         {std::pair<std::int64_t, int>{INT64_MIN, 0}, {-1, 0}, {255, 255}, {256, 255}, {INT64_MAX, 255}}) {
        DAWMeterPacket packet;
        packet.selectedTrackIndex = index;
        packet.channelMeters.push_back({.trackIndex = index});
        const Bytes message = encodeMeter(packet);
        EXPECT_EQ(message[7], byte);
        EXPECT_EQ(message[10], byte);
    }
}

TEST(MeterRecord, readsAnUnknownStatusAsSilence) {
    for (int raw = 0; raw <= 255; ++raw) {
        Bytes message = hex("17 00 00 00 00 00 00 01 00 01 01 00 00 00 00 00 00");
        message[8] = message[11] = static_cast<std::uint8_t>(raw);
        const auto packet = decodeMeter(message);
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->selectedTrackStatus, raw < 5 ? TrackMeterStatus(raw) : TrackMeterStatus::silence)
            << raw;
        const int low = raw & 7;
        EXPECT_EQ(packet->channelMeters[0].status,
                  low < 5 ? TrackMeterStatus(low) : TrackMeterStatus::silence)
            << raw;
        EXPECT_EQ(packet->channelMeters[0].isClipping, raw >= 128) << raw;
    }
}

TEST(MeterRecord, readsTheListsThatAreWholeAndNoOthers) {
    using List = std::vector<std::uint8_t>;
    struct Case {
        const char* tail;
        List bands;
        List history;
    };
    const Case cases[] = {
        {"", {}, {}},
        {"00", {}, {}},
        {"02 0A 0B", {0x0A, 0x0B}, {}},
        {"02 0A 0B 01", {0x0A, 0x0B}, {}},
        {"02 0A 0B 01 0C", {0x0A, 0x0B}, {0x0C}},
        {"00 02 0A 0B FF", {}, {0x0A, 0x0B}},
        {"05 01 0A", {}, {0x0A}},  // bands cut short: the history is looked for right after their count
        {"05 02 0A", {}, {}},
        {"FF", {}, {}},
    };
    for (const auto& [tail, bands, history] : cases) {
        const auto packet = decodeMeter(hex(std::string("17 00 00 00 00 00 00 01 01 00 ") + tail));
        ASSERT_TRUE(packet) << tail;
        EXPECT_EQ(packet->spectrumBands, bands) << tail;
        EXPECT_EQ(packet->amplitudeHistory, history) << tail;
    }
}

TEST(MeterRecord, isNothingBeforeItsLastChannelMeterIsWhole) {
    const Bytes whole = hex(exampleBytes);
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(decodeMeter(cut).has_value(), length >= 20) << length;
    }
    EXPECT_FALSE(decodeMeter(hex("16 00 00 00 00 00 00 01 01 00")));
}

TEST(PlaceholderMeters, areFourSilentTracks) {
    EXPECT_EQ(encodeMeter(DAWMeterPacket::placeholder()),
              hex("17 00 00 00 00 00 00 01 01 04 01 01 00 00 00 02 01 00 00 00 03 01 00 00 00 00 01 00 00 00 "
                  "10 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 10 00 00 00 00 00 00 00 00 00 00 00 00 "
                  "00 00 00 00"));
}

}  // namespace
