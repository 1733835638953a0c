#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "protocol/input_packet.h"
#include "require.h"

using namespace orbinex;

namespace {

struct Check {
    void operator()(const DecodedPacket::MouseMove& move) const {
        REQUIRE(std::isfinite(move.deltaX) && std::isfinite(move.deltaY));
    }
    void operator()(const DecodedPacket::MouseScroll& scroll) const {
        REQUIRE(std::isfinite(scroll.deltaX) && std::isfinite(scroll.deltaY));
    }
    void operator()(const DecodedPacket::MouseClick& click) const {
        REQUIRE(click.tapCount >= 1 && click.tapCount <= 3);
    }
    void operator()(const DecodedPacket::Text& text) const {
        REQUIRE(!text.text.empty());
        REQUIRE(strictUTF8({reinterpret_cast<const std::uint8_t*>(text.text.data()), text.text.size()}));
        REQUIRE(text.fallbackKeycode != 0xFFFF);
    }
    void operator()(const DecodedPacket::KeyStroke&) const {}
    void operator()(const DecodedPacket::MouseButtonChange&) const {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto packet = DecodedPacket::decode({data, size});
    if (!packet) return 0;
    std::visit(Check{}, packet->value);
    const Bytes again = packet->encode();
    REQUIRE(DecodedPacket::decode(again) == packet);
    // Nothing but the tap count is changed by reading, and nothing but surplus bytes is lost.
    REQUIRE(again.size() <= size);
    if (!std::holds_alternative<DecodedPacket::MouseClick>(packet->value)) {
        REQUIRE(std::equal(again.begin(), again.end(), data));
    }
    return 0;
}
