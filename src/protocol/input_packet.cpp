#include "protocol/input_packet.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "base/text.h"

namespace orbinex {

namespace {

enum PacketType : std::uint8_t {
    mouseMove = 0x01,
    mouseClick = 0x02,
    mouseScroll = 0x03,
    keyStroke = 0x04,
    text = 0x05,
    mouseButton = 0x06,
};

constexpr std::uint16_t noFallback = 0xFFFF;
constexpr std::size_t textOffset = 4;

std::uint16_t read16(ByteView bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

float readFloat(ByteView bytes, std::size_t offset) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(read16(bytes, offset)) |
                                static_cast<std::uint32_t>(read16(bytes, offset + 2)) << 16);
}

void append16(Bytes& bytes, std::uint16_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void appendFloat(Bytes& bytes, float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    append16(bytes, static_cast<std::uint16_t>(bits));
    append16(bytes, static_cast<std::uint16_t>(bits >> 16));
}

std::optional<MouseButton> buttonFromByte(std::uint8_t byte) {
    if (byte == 1) return MouseButton::left;
    if (byte == 2) return MouseButton::right;
    return std::nullopt;
}

std::uint8_t byteFromButton(MouseButton button) {
    return button == MouseButton::left ? 1 : 2;
}

std::optional<KeyState> stateFromByte(std::uint8_t byte) {
    if (byte == 1) return KeyState::pressed;
    if (byte == 0) return KeyState::released;
    return std::nullopt;
}

std::uint8_t byteFromState(KeyState state) {
    return state == KeyState::pressed ? 1 : 0;
}

/// Moves and scrolls share their layout.
template <class Motion>
std::optional<DecodedPacket> decodeMotion(ByteView bytes) {
    if (bytes.size() < 9) return std::nullopt;
    const float deltaX = readFloat(bytes, 1);
    const float deltaY = readFloat(bytes, 5);
    if (!std::isfinite(deltaX) || !std::isfinite(deltaY)) return std::nullopt;
    return DecodedPacket{Motion{deltaX, deltaY}};
}

std::optional<DecodedPacket> decodeClick(ByteView bytes) {
    if (bytes.size() < 3) return std::nullopt;
    const auto button = buttonFromByte(bytes[1]);
    if (!button) return std::nullopt;
    const auto tapCount = std::clamp<std::uint8_t>(bytes[2], 1, 3);
    return DecodedPacket{DecodedPacket::MouseClick{*button, tapCount}};
}

std::optional<DecodedPacket> decodeKeyStroke(ByteView bytes) {
    if (bytes.size() < 5) return std::nullopt;
    const auto state = stateFromByte(bytes[4]);
    if (!state) return std::nullopt;
    return DecodedPacket{DecodedPacket::KeyStroke{read16(bytes, 1), ModifierFlags{bytes[3]}, *state}};
}

std::optional<DecodedPacket> decodeText(ByteView bytes) {
    if (bytes.size() <= textOffset) return std::nullopt;
    auto content = strictUTF8(bytes.subspan(textOffset));
    if (!content) return std::nullopt;
    DecodedPacket::Text packet{std::move(*content), ModifierFlags{bytes[1]}, read16(bytes, 2)};
    if (packet.fallbackKeycode == noFallback) packet.fallbackKeycode.reset();
    return DecodedPacket{std::move(packet)};
}

std::optional<DecodedPacket> decodeButtonChange(ByteView bytes) {
    if (bytes.size() < 3) return std::nullopt;
    const auto button = buttonFromByte(bytes[1]);
    const auto state = stateFromByte(bytes[2]);
    if (!button || !state) return std::nullopt;
    return DecodedPacket{DecodedPacket::MouseButtonChange{*button, *state}};
}

struct PacketEncoder {
    Bytes operator()(const DecodedPacket::MouseMove& packet) const {
        return motion(mouseMove, packet.deltaX, packet.deltaY);
    }
    Bytes operator()(const DecodedPacket::MouseClick& packet) const {
        return {mouseClick, byteFromButton(packet.button), packet.tapCount};
    }
    Bytes operator()(const DecodedPacket::MouseScroll& packet) const {
        return motion(mouseScroll, packet.deltaX, packet.deltaY);
    }
    Bytes operator()(const DecodedPacket::KeyStroke& packet) const {
        Bytes bytes{keyStroke};
        append16(bytes, packet.keycode);
        bytes.push_back(packet.modifiers.rawValue);
        bytes.push_back(byteFromState(packet.state));
        return bytes;
    }
    Bytes operator()(const DecodedPacket::Text& packet) const {
        Bytes bytes{text, packet.modifiers.rawValue};
        append16(bytes, packet.fallbackKeycode.value_or(noFallback));
        bytes.insert(bytes.end(), packet.text.begin(), packet.text.end());
        return bytes;
    }
    Bytes operator()(const DecodedPacket::MouseButtonChange& packet) const {
        return {mouseButton, byteFromButton(packet.button), byteFromState(packet.state)};
    }

    static Bytes motion(PacketType type, float deltaX, float deltaY) {
        Bytes bytes{type};
        appendFloat(bytes, deltaX);
        appendFloat(bytes, deltaY);
        return bytes;
    }
};

}  // namespace

std::optional<DecodedPacket> DecodedPacket::decode(ByteView bytes) {
    if (bytes.empty()) return std::nullopt;
    switch (bytes[0]) {
        case mouseMove: return decodeMotion<MouseMove>(bytes);
        case mouseClick: return decodeClick(bytes);
        case mouseScroll: return decodeMotion<MouseScroll>(bytes);
        case keyStroke: return decodeKeyStroke(bytes);
        case text: return decodeText(bytes);
        case mouseButton: return decodeButtonChange(bytes);
        default: return std::nullopt;
    }
}

Bytes DecodedPacket::encode() const {
    return std::visit(PacketEncoder{}, value);
}

}  // namespace orbinex
