// What a notification costs the allocator between bluetoothd's socket and the link. The program has this
// counting operator new to itself.

#include <QCoreApplication>

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "protocol/gatt.h"
#include "support/allocation_counter.h"

namespace orbinex::test {
namespace {

TEST(BluezSocket, allocatesNothingFromPacketToDelegate) {
    BluezWorld world;
    world.establish();
    world.seen.lines.reserve(10'000);
    const auto play = [&] {
        for (int i = 0; i < 100; ++i) {
            world.bluez.notify(world.phone, OrbinexProtocol::mouseCharacteristicUUID, "12345678");
        }
    };
    const auto take = [&] {
        const auto before = world.seen.lines.size();
        while (world.seen.lines.size() < before + 100) QCoreApplication::processEvents();
    };
    play();
    take();
    play();
    EXPECT_EQ(allocationsDuring(take), 0U);
}

}  // namespace
}  // namespace orbinex::test
