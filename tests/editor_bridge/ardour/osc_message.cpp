#include "editor_bridge/ardour/osc_message.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace orbinex::test {

namespace {

constexpr std::size_t unit = 4;

void putText(Bytes& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    do bytes.push_back(0);
    while (bytes.size() % unit != 0);
}

void putNumber(Bytes& bytes, std::uint32_t bits) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
}

/// Takes a text with its padding off the front.
std::optional<std::string> takeText(ByteView& bytes) {
    const auto end = std::ranges::find(bytes, std::uint8_t{0});
    if (end == bytes.end()) return std::nullopt;
    std::string text(bytes.begin(), end);
    const std::size_t size = (text.size() / unit + 1) * unit;
    if (size > bytes.size()) return std::nullopt;
    bytes = bytes.subspan(size);
    return text;
}

std::optional<std::uint32_t> takeNumber(ByteView& bytes) {
    if (bytes.size() < unit) return std::nullopt;
    std::uint32_t bits = 0;
    for (const auto byte : bytes.first(unit)) bits = bits << 8U | byte;
    bytes = bytes.subspan(unit);
    return bits;
}

}  // namespace

Bytes OscMessage::encode() const {
    Bytes bytes;
    putText(bytes, address);
    std::string types = ",";
    for (const auto& argument : arguments) types += std::holds_alternative<float>(argument) ? 'f' : 'i';
    putText(bytes, types);
    for (const auto& argument : arguments) {
        putNumber(bytes,
                  std::visit([](auto number) { return std::bit_cast<std::uint32_t>(number); }, argument));
    }
    return bytes;
}

std::optional<OscMessage> OscMessage::decode(ByteView bytes) {
    const auto address = takeText(bytes);
    if (!address || !address->starts_with('/')) return std::nullopt;
    const auto types = takeText(bytes);
    if (!types || !types->starts_with(',')) return std::nullopt;
    OscMessage message{*address, {}};
    for (const char type : types->substr(1)) {
        const auto bits = takeNumber(bytes);
        if (!bits || (type != 'i' && type != 'f')) return std::nullopt;
        if (type == 'i') message.arguments.emplace_back(std::bit_cast<std::int32_t>(*bits));
        if (type == 'f') message.arguments.emplace_back(std::bit_cast<float>(*bits));
    }
    return message;
}

}  // namespace orbinex::test
