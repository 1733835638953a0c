#include "test_phone/gestures.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "base/text.h"

namespace orbinex::test_phone {

namespace {

constexpr int stepsOfCircle = 72;
/// Fits with its four bytes of header into what every phone and computer agree on today.
constexpr std::size_t maximumTextBytes = 100;

/// The first word with the space behind it, or as much of it as one packet takes.
std::string_view firstPiece(std::string_view text) {
    const auto space = text.find(' ');
    const auto word = space == std::string_view::npos ? text : text.substr(0, space + 1);
    if (word.size() <= maximumTextBytes) return word;
    std::size_t end = firstCharacterLength(word);
    // A single character may be longer than that: there are emoji of many parts.
    while (true) {
        const auto next = firstCharacterLength(word.substr(end));
        if (next == 0 || end + next > maximumTextBytes) return word.substr(0, end);
        end += next;
    }
}

}  // namespace

Packets circle(double radius) {
    Packets result;
    const auto place = [&](int step) {
        const double angle = 2 * std::numbers::pi * step / stepsOfCircle;
        return std::pair(radius * std::cos(angle), radius * std::sin(angle));
    };
    for (int step = 0; step < stepsOfCircle; ++step) {
        const auto [fromX, fromY] = place(step);
        const auto [toX, toY] = place(step + 1);
        const DecodedPacket packet{
            DecodedPacket::MouseMove{static_cast<float>(toX - fromX), static_cast<float>(toY - fromY)}};
        result.push_back(packet);
    }
    return result;
}

Packets taps(MouseButton button, int count) {
    Packets result;
    for (int tap = 1; tap <= count; ++tap) {
        const DecodedPacket packet{DecodedPacket::MouseClick{button, static_cast<std::uint8_t>(tap)}};
        result.push_back(packet);
    }
    return result;
}

Packets typedText(std::string_view text) {
    Packets result;
    while (!text.empty()) {
        const auto piece = firstPiece(text);
        const DecodedPacket packet{DecodedPacket::Text{std::string(piece), {}, std::nullopt}};
        result.push_back(packet);
        text.remove_prefix(piece.size());
    }
    return result;
}

Packets strike(std::uint16_t keycode, ModifierFlags modifiers) {
    return {{DecodedPacket::KeyStroke{keycode, modifiers, KeyState::pressed}},
            {DecodedPacket::KeyStroke{keycode, modifiers, KeyState::released}}};
}

}  // namespace orbinex::test_phone
