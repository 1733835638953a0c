#include <gtest/gtest.h>

#include "bridge_world.h"
#include "support/allocation_counter.h"

namespace orbinex {
namespace {

TEST(TimecodeLine, thatChangesNothingSendsNothingAndAllocatesNothing) {
    BridgeWorld world;
    world.beginSession();
    const std::string line =
        "OXTC|01:00:10:00|29.97 DF|RESOLVE 19.1.2 build 7|A timeline with a long name|cut and "
        "color|1|107892\n";
    world.print(line);
    world.print(line);
    world.forget();
    // In one piece, then cut, as reads are.
    const auto whole = test::allocationsDuring([&] { world.print(line); });
    const std::string_view text = line;
    const auto printInPieces = [&] {
        world.print(text.substr(0, 40));
        world.print(text.substr(40));
    };
    for (int i = 0; i < 3; ++i) printInPieces();
    const auto pieces = test::allocationsDuring(printInPieces);
    EXPECT_EQ(whole, 0U);
    EXPECT_EQ(pieces, 0U);
    EXPECT_EQ(world.told.size() + world.packets.size(), 0U);
}

}  // namespace
}  // namespace orbinex
