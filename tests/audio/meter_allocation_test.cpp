#include <gtest/gtest.h>

#include "audio/meter_world.h"
#include "support/allocation_counter.h"

namespace orbinex {
namespace {

TEST(MeterEngine, allocatesNothingInASteadyTick) {
    test::MeterWorld world;
    for (std::int64_t i = 1; i <= 24; ++i) world.addTrack(i, test::sine(100.0 * static_cast<double>(i), 0.5));
    world.addTrack(25, "/missing.wav");
    world.clips.erase(25);
    world.listTrack(0, true);
    for (const std::int64_t selected : {1, 0, 25}) {
        world.selected = selected;
        world.isPlaying = selected == 1;
        for (int i = 0; i < 3; ++i) world.tick();
        EXPECT_EQ(test::allocationsDuring([&] {
                      for (int i = 0; i < 20; ++i) {
                          ++world.playhead;
                          world.tick();
                      }
                  }),
                  0U)
            << selected;
    }
}

}  // namespace
}  // namespace orbinex
