#include <gtest/gtest.h>

#include "audio/meter_world.h"
#include "sim/r3d_clip_writer.h"
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

TEST(R3DClip, isReadWithoutAllocating) {
    SimulatedClipMedia media;
    const std::vector<R3DFrame> frames(20'000, {1 << 20, -(1 << 20)});
    const auto segments = R3DClipWriter::clip(frames, 6000, 12'000);
    for (std::size_t i = 0; i < segments.size(); ++i)
        media.files["/A_00" + std::to_string(i + 1) + ".R3D"] = std::make_shared<Bytes>(segments[i]);
    const auto reader = R3DAudioClipReader::create("/A_001.R3D", media);
    std::vector<float> buffer(20'000);
    EXPECT_EQ(test::allocationsDuring([&] {
                  EXPECT_EQ(reader->readMono(0, buffer.size(), buffer).framesRead, 20'000U);
                  EXPECT_EQ(reader->readMono(11'990, 100, buffer).framesRead, 100U);
              }),
              0U);
}

}  // namespace
}  // namespace orbinex
