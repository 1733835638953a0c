#include "test_phone/numbered_moves.h"

#include "protocol/input_packet.h"

namespace orbinex::test_phone {

namespace {

constexpr std::uint32_t side = 100;
constexpr std::uint32_t lastPlace = side * side - 1;

}  // namespace

Offset offsetAfter(std::uint32_t moves) {
    const auto along = moves % (2 * lastPlace);
    const auto place = along <= lastPlace ? along : 2 * lastPlace - along;
    const auto line = place / side;
    const auto column = place % side;
    return {static_cast<int>(line % 2 == 0 ? column : side - 1 - column), static_cast<int>(line)};
}

Bytes numberedMove(std::uint32_t number) {
    const auto from = offsetAfter(number);
    const auto to = offsetAfter(number + 1);
    Bytes result = DecodedPacket{DecodedPacket::MouseMove{static_cast<float>(to.x - from.x),
                                                          static_cast<float>(to.y - from.y)}}
                       .encode();
    for (int shift = 0; shift < 32; shift += 8) result.push_back(static_cast<std::uint8_t>(number >> shift));
    return result;
}

}  // namespace orbinex::test_phone
