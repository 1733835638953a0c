#include "protocol/input_packet.h"

#include <gtest/gtest.h>

#include "support/allocation_counter.h"
#include "support/byte_transcript.h"

using namespace orbinex;
using orbinex::test::hex;

namespace {

using P = DecodedPacket;

struct Transcript {
    const char* bytes;
    P packet;
};

const Transcript transcripts[] = {
    {"01 00 00 80 3F 00 00 00 C0", {P::MouseMove{1, -2}}},
    {"01 01 00 00 00 00 00 00 80", {P::MouseMove{1.4e-45F, -0.0F}}},
    {"02 01 01", {P::MouseClick{MouseButton::left, 1}}},
    {"02 02 03", {P::MouseClick{MouseButton::right, 3}}},
    {"03 00 00 20 41 FF FF 7F 7F", {P::MouseScroll{10, 3.40282347e+38F}}},
    {"04 24 00 01 01", {P::KeyStroke{0x24, ModifierFlags::shift, KeyState::pressed}}},
    {"04 34 12 FF 00", {P::KeyStroke{0x1234, ModifierFlags{0xFF}, KeyState::released}}},
    {"05 00 FF FF 68 69", {P::Text{"hi", {}, std::nullopt}}},
    {"05 08 26 00 68", {P::Text{"h", ModifierFlags::command, 0x26}}},
    {"05 F6 FE FF 00 F0 9F 98 80", {P::Text{std::string("\0\U0001F600", 5), ModifierFlags{0xF6}, 0xFFFE}}},
    {"06 01 01", {P::MouseButtonChange{MouseButton::left, KeyState::pressed}}},
    {"06 02 00", {P::MouseButtonChange{MouseButton::right, KeyState::released}}},
};

TEST(InputPacket, readsAndWritesEachKind) {
    for (const auto& [bytes, packet] : transcripts) {
        EXPECT_EQ(P::decode(hex(bytes)), packet) << bytes;
        EXPECT_EQ(packet.encode(), hex(bytes)) << bytes;
    }
}

TEST(InputPacket, ignoresWhatFollowsItsFixedLength) {
    for (const auto& [bytes, packet] : transcripts) {
        if (std::holds_alternative<P::Text>(packet.value)) continue;
        EXPECT_EQ(P::decode(hex(std::string(bytes) + " AA BB CC")), packet) << bytes;
    }
}

TEST(InputPacket, isNothingWhenAnyByteIsMissing) {
    for (const auto& [bytes, packet] : transcripts) {
        const Bytes whole = hex(bytes);
        const std::size_t minimum = std::holds_alternative<P::Text>(packet.value) ? 5 : whole.size();
        for (std::size_t length = 0; length < minimum; ++length) {
            // A copy of exactly that length, so that the address sanitizer sees a read beyond it.
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_FALSE(P::decode(cut)) << bytes << " cut to " << length;
        }
    }
}

TEST(InputPacket, limitsTheTapCount) {
    const std::pair<const char*, std::uint8_t> cases[] = {
        {"02 01 00", 1}, {"02 01 02", 2}, {"02 01 04", 3}, {"02 01 FF", 3}};
    for (const auto& [bytes, tapCount] : cases) {
        EXPECT_EQ(P::decode(hex(bytes)), P{(P::MouseClick{MouseButton::left, tapCount})}) << bytes;
    }
}

TEST(InputPacket, isNothingWhenItsContentsAreOutOfRange) {
    for (const char* const bytes : {
             "00",
             "00 01 01 01 01",
             "07 01 01 01 01 01 01 01 01",
             "FF 01 01",
             "01 00 00 C0 7F 00 00 00 00",  // not a number
             "01 00 00 00 00 00 00 80 7F",  // infinity
             "03 00 00 80 FF 00 00 00 00",  // minus infinity
             "03 00 00 00 00 01 00 80 7F",  // signalling not-a-number
             "02 00 01",
             "02 03 01",
             "06 00 01",
             "06 03 00",
             "06 01 02",
             "06 02 FF",
             "04 24 00 01 02",
             "04 24 00 01 FF",
             "05 00 FF FF C3",
             "05 00 FF FF 68 C3 28",
             "05 00 FF FF ED A0 80",
         }) {
        EXPECT_FALSE(P::decode(hex(bytes))) << bytes;
    }
}

TEST(InputPacket, isReadWithoutAskingForMemoryUnlessItIsLongText) {
    for (const auto& [bytes, packet] : transcripts) {
        const Bytes value = hex(bytes);
        EXPECT_EQ(test::allocationsDuring([&] { static_cast<void>(P::decode(value)); }), 0U) << bytes;
    }
    Bytes text = hex("05 00 FF FF");
    text.insert(text.end(), 200, 'a');
    EXPECT_EQ(test::allocationsDuring([&] { static_cast<void>(P::decode(text)); }), 1U);
}

TEST(ModifierFlags, formASet) {
    const ModifierFlags both = ModifierFlags::shift | ModifierFlags::command;
    EXPECT_EQ(both.rawValue, 0x09);
    EXPECT_TRUE(both.contains(ModifierFlags::command));
    EXPECT_FALSE(both.contains(ModifierFlags::command | ModifierFlags::option));
    EXPECT_TRUE((both & ModifierFlags::control).isEmpty());
}

}  // namespace
