// The way from a thread that must not wait to one that may.

#include "editor_bridge/midi/midi_relay.h"

#include <atomic>
#include <future>
#include <string>

#include <gtest/gtest.h>

#include "editor_bridge/bridge_world.h"
#include "support/allocation_counter.h"
#include "support/comes_to_pass.h"

namespace orbinex::test {
namespace {

/// Hands on to a bridge what it is told, once it may.
struct Listener final : MIDIListener {
    void received(const MIDIMessage& message) override {
        isAsked = true;
        permitted.wait();
        told += message[0] == 0xE0 ? "1" : "2";
        world.midi.inject(message);
    }
    void lost() override { told += " lost"; }

    BridgeWorld world;
    std::atomic<bool> isAsked = false;
    std::promise<void> permission;
    std::future<void> permitted = permission.get_future();
    std::string told;
};

TEST(MIDIRelay, neitherWaitsForItsListenerNorTakesMemoryAndLosesNothing) {
    Listener listener;
    auto& world = listener.world;
    world.workspace.activate(logic);
    {
        MIDIRelay relay(listener);
        relay.put({0xE0, 0x6B, 0x23});
        relay.wake();
        EXPECT_TRUE(comesToPass(world.queue, [&] { return listener.isAsked.load(); }));
        // Would never return if it had to wait for who is being told.
        EXPECT_EQ(allocationsDuring([&] {
                      relay.put({0xE1, 0x6B, 0x23});
                      relay.wake();
                      relay.lose();
                  }),
                  0U);
        listener.permission.set_value();
    }
    EXPECT_EQ(listener.told, "12 lost") << "in order, and all of it before the relay is gone";
    world.queue.runDue();
    EXPECT_EQ(world.session().tracks[0].volumeDB, -36);
    EXPECT_EQ(world.session().tracks[1].volumeDB, -36);
}

}  // namespace
}  // namespace orbinex::test
