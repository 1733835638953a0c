#include "editor_bridge/midi/message_ring.h"

#include <cstdint>
#include <thread>

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

TEST(MessageRing, keepsTheOrderBetweenTwoThreads) {
    constexpr std::uint32_t count = 200'000;
    MessageRing ring(1024);
    std::thread writer([&] {
        for (std::uint32_t i = 0; i < count;) {
            if (ring.push(numbered(i))) {
                ++i;
            } else {
                std::this_thread::yield();
            }
        }
    });
    std::uint32_t wrong = 0;
    for (std::uint32_t i = 0; i < count;) {
        const auto* const message = ring.front();
        if (!message) {
            std::this_thread::yield();
            continue;
        }
        wrong += *message == numbered(i) ? 0U : 1U;
        ring.pop();
        ++i;
    }
    writer.join();
    EXPECT_EQ(wrong, 0U);
}

}  // namespace
}  // namespace orbinex
