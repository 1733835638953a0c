#include "protocol/meter_packet.h"

#include <algorithm>

#include "protocol/message_type.h"
#include "protocol/meter_scale.h"

namespace orbinex {

namespace {

constexpr std::size_t meterCountOffset = 9;
constexpr std::size_t metersOffset = 10;
constexpr std::size_t meterSize = 5;
constexpr std::uint8_t clippingFlag = 0x80;
constexpr std::uint8_t statusMask = 0x07;
constexpr auto messageType = static_cast<std::uint8_t>(OrbinexProtocol::MessageType::dawMeter);

std::uint8_t limitedToByte(std::int64_t value) {
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
}

TrackMeterStatus statusFromByte(std::uint8_t byte) {
    if (byte > static_cast<std::uint8_t>(TrackMeterStatus::disconnected)) return TrackMeterStatus::silence;
    return static_cast<TrackMeterStatus>(byte);
}

void append(Bytes& message, const TrackChannelMeter& meter) {
    const auto status = static_cast<std::uint8_t>(static_cast<std::uint8_t>(meter.status) & statusMask);
    message.push_back(limitedToByte(meter.trackIndex));
    message.push_back(static_cast<std::uint8_t>(status | (meter.isClipping ? clippingFlag : 0)));
    message.push_back(meterByte(meter.peakDBFS));
    message.push_back(meterByte(meter.rmsDBFS));
    message.push_back(meterByte(meter.peakHoldDBFS));
}

/// A count byte and that many of the list's first bytes.
void append(Bytes& message, const std::vector<std::uint8_t>& list, std::size_t count) {
    message.push_back(static_cast<std::uint8_t>(count));
    message.insert(message.end(), list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count));
}

/// `bytes` are the five of one meter.
TrackChannelMeter meterFromBytes(ByteView bytes) {
    const auto level = [](std::uint8_t byte) { return dbFromMeterPosition(byte / 255.0); };
    return {bytes[0],        statusFromByte(bytes[1] & statusMask), level(bytes[2]), level(bytes[3]),
            level(bytes[4]), (bytes[1] & clippingFlag) != 0};
}

/// Takes a count byte and as many bytes off the front. Where the bytes are fewer than counted, only the count
/// byte is taken and the list is empty.
std::vector<std::uint8_t> takeList(ByteView& rest) {
    if (rest.empty()) return {};
    const std::size_t count = rest[0];
    rest = rest.subspan(1);
    if (rest.size() < count) return {};
    const ByteView list = rest.first(count);
    rest = rest.subspan(count);
    return {list.begin(), list.end()};
}

}  // namespace

DAWMeterPacket DAWMeterPacket::placeholder() {
    DAWMeterPacket packet;
    packet.selectedTrackIndex = 1;
    for (const std::int64_t index : {1, 2, 3, 0}) packet.channelMeters.push_back({.trackIndex = index});
    packet.spectrumBands.assign(16, 0);
    packet.amplitudeHistory.assign(16, 0);
    return packet;
}

Bytes encodeMeter(const DAWMeterPacket& packet) {
    Bytes message;
    encodeMeter(packet, message);
    return message;
}

void encodeMeter(const DAWMeterPacket& packet, Bytes& message) {
    const std::size_t meters = std::min(packet.channelMeters.size(), maximumChannelMeters);
    const std::size_t bands = std::min(packet.spectrumBands.size(), maximumSpectrumBands);
    const std::size_t history = std::min(packet.amplitudeHistory.size(), maximumAmplitudeHistory);

    message.clear();
    message.reserve(metersOffset + meterSize * meters + 1 + bands + 1 + history);
    message.push_back(messageType);
    for (unsigned shift = 0; shift < 16; shift += 8) {
        message.push_back(static_cast<std::uint8_t>(packet.sequence >> shift));
    }
    for (unsigned shift = 0; shift < 32; shift += 8) {
        message.push_back(static_cast<std::uint8_t>(packet.timestampMs >> shift));
    }
    message.push_back(limitedToByte(packet.selectedTrackIndex));
    message.push_back(static_cast<std::uint8_t>(packet.selectedTrackStatus));
    message.push_back(static_cast<std::uint8_t>(meters));
    for (std::size_t i = 0; i < meters; ++i) append(message, packet.channelMeters[i]);
    append(message, packet.spectrumBands, bands);
    append(message, packet.amplitudeHistory, history);
}

std::optional<DAWMeterPacket> decodeMeter(ByteView message) {
    if (message.size() < metersOffset || message[0] != messageType) return std::nullopt;
    const std::size_t meters = message[meterCountOffset];
    if (message.size() < metersOffset + meterSize * meters) return std::nullopt;

    DAWMeterPacket packet;
    packet.sequence = static_cast<std::uint16_t>(message[1] | message[2] << 8);
    for (std::size_t i = 0; i < 4; ++i) packet.timestampMs |= std::uint32_t{message[3 + i]} << (8 * i);
    packet.selectedTrackIndex = message[7];
    packet.selectedTrackStatus = statusFromByte(message[8]);
    packet.channelMeters.reserve(meters);
    ByteView rest = message.subspan(metersOffset);
    for (std::size_t i = 0; i < meters; ++i) {
        packet.channelMeters.push_back(meterFromBytes(rest.first(meterSize)));
        rest = rest.subspan(meterSize);
    }
    packet.spectrumBands = takeList(rest);
    packet.amplitudeHistory = takeList(rest);
    return packet;
}

}  // namespace orbinex
