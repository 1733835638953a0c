#pragma once

#include <string_view>
#include <vector>

#include "protocol/input_packet.h"

namespace orbinex::test_phone {

/// What a finger does, as the packets that the phone sends for it.
using Packets = std::vector<DecodedPacket>;

/// Once around clockwise on the screen, back to where it began. The radius is in points.
Packets circle(double radius);
/// A tap, a double tap or a triple tap: each tap tells which of its run it is.
Packets taps(MouseButton button, int count);
/// Text as the phone's keyboard sends it, a word at a time; what is longer than a small notification goes in
/// pieces of whole characters.
Packets typedText(std::string_view text);
/// A key, pressed and released.
Packets strike(std::uint16_t keycode, ModifierFlags modifiers);

}  // namespace orbinex::test_phone
