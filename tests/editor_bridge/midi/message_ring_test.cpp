#include "editor_bridge/midi/message_ring.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

MIDIMessage numbered(std::uint32_t number) {
    return {static_cast<std::uint8_t>(number >> 16U), static_cast<std::uint8_t>(number >> 8U),
            static_cast<std::uint8_t>(number)};
}

TEST(MessageRing, dropsTheNewestWhenItIsFullAndGoesOnWhenThereIsRoom) {
    MessageRing ring(4);
    EXPECT_EQ(ring.front(), nullptr);
    for (std::uint32_t round = 0; round < 10; ++round) {
        for (std::uint32_t i = 0; i < 6; ++i) EXPECT_EQ(ring.push(numbered(round * 10 + i)), i < 4);
        for (std::uint32_t i = 0; i < 4; ++i) {
            ASSERT_NE(ring.front(), nullptr);
            EXPECT_EQ(*ring.front(), numbered(round * 10 + i));
            ring.pop();
        }
        EXPECT_EQ(ring.front(), nullptr);
    }
}

}  // namespace
}  // namespace orbinex
