// Which MIDI system is used, and what becomes of it, with systems that do what they are told.

#include "editor_bridge/midi/midi_keeper.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <stop_token>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "editor_bridge/midi/system_midi_endpoints.h"
#include "sim/virtual_main_queue.h"
#include "support/comes_to_pass.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

/// A MIDI system that comes and goes.
class PretendSystem {
  public:
    std::atomic<bool> isThere = false;
    /// It is lost before it is opened.
    std::atomic<bool> isBreaking = false;
    /// While this is set, everything that asks the system for something waits.
    std::atomic<bool> isStuck = false;
    std::atomic<int> connections = 0;
    std::atomic<int> openings = 0;
    std::atomic<int> sent = 0;
    std::atomic<MIDIListener*> listener = nullptr;

    MIDISystem opener() {
        return [this](MIDIListener& told) -> std::unique_ptr<MIDIConnection> {
            answer();
            if (isBreaking) told.lost();
            if (!isThere) return nullptr;
            ++openings;
            listener = &told;
            return std::make_unique<Connection>(*this);
        };
    }
    void leave() {
        isThere = false;
        if (auto* const told = listener.load()) told->lost();
    }
    void answer() const {
        while (isStuck) std::this_thread::sleep_for(1ms);
    }

  private:
    struct Connection final : MIDIConnection {
        explicit Connection(PretendSystem& itsSystem) : system(itsSystem) { ++system.connections; }
        ~Connection() override {
            system.answer();
            --system.connections;
        }
        void send(const MIDIMessage& /*message*/) override { ++system.sent; }
        PretendSystem& system;
    };
};

class Endpoints : public ::testing::Test {
  protected:
    Endpoints() {
        endpoints.onSourceChanged = [this] { changes.push_back(endpoints.isSourceOnline()); };
    }
    // What is stuck goes on when a test is left early.
    ~Endpoints() override { preferred.isStuck = false; }

    template <class Condition>
    bool comesToPass(Condition condition) {
        return test::comesToPass(queue, condition);
    }

    VirtualMainQueue queue;
    PretendSystem preferred;
    PretendSystem other;
    std::vector<bool> changes;
    SystemMIDIEndpoints endpoints{queue,
                                  {.systems = {preferred.opener(), other.opener()}, .retryDelay = 5ms}};
};

TEST_F(Endpoints, areInTheFirstSystemThatIsThereUntilItGoes) {
    endpoints.start();
    EXPECT_FALSE(endpoints.isSourceOnline());
    other.isThere = true;
    ASSERT_TRUE(comesToPass([&] { return endpoints.isSourceOnline(); }));
    endpoints.send({0xE0, 0, 0});
    EXPECT_EQ(other.sent, 1);
    preferred.isThere = true;
    other.leave();
    ASSERT_TRUE(comesToPass([&] { return preferred.connections == 1; }));
    ASSERT_TRUE(comesToPass([&] { return endpoints.isSourceOnline(); }));
    EXPECT_EQ(other.connections, 0);
    preferred.leave();
    ASSERT_TRUE(comesToPass([&] { return !endpoints.isSourceOnline(); }));
    endpoints.send({0xE0, 0, 0});
    EXPECT_EQ(preferred.sent, 0);
    EXPECT_TRUE(changes.front());
    EXPECT_FALSE(changes.back());
}

TEST_F(Endpoints, areTakenAwayAndMadeAgainAsOftenAsWanted) {
    preferred.isThere = true;
    for (int round = 0; round < 3; ++round) {
        endpoints.start();
        endpoints.start();
        ASSERT_TRUE(comesToPass([&] { return endpoints.isSourceOnline(); }));
        EXPECT_EQ(preferred.connections, 1);
        endpoints.stop();
        EXPECT_EQ(preferred.connections, 0);
        EXPECT_FALSE(endpoints.isSourceOnline());
        endpoints.stop();
    }
}

TEST_F(Endpoints, areNotTakenAwayForTheLossOfASystemThatDidNotOpen) {
    preferred.isBreaking = true;
    other.isThere = true;
    endpoints.start();
    ASSERT_TRUE(comesToPass([&] { return endpoints.isSourceOnline(); }));
    other.leave();
    ASSERT_TRUE(comesToPass([&] { return !endpoints.isSourceOnline(); }));
    EXPECT_EQ(other.openings, 1);
    EXPECT_EQ(changes, (std::vector<bool>{true, false}));
}

TEST_F(Endpoints, tellNothingOnceTheyAreStopped) {
    preferred.isThere = true;
    // Shared with the endpoints, which outlive this function when it is left early.
    const auto messages = std::make_shared<std::atomic<int>>(0);
    endpoints.onMessage = [messages](const MIDIMessage&) { ++*messages; };
    endpoints.start();
    ASSERT_TRUE(comesToPass([&] { return endpoints.isSourceOnline(); }));
    // A system whose thread goes on while it is being left, and which does not answer for a while.
    preferred.isStuck = true;
    std::jthread player([listener = preferred.listener.load()](const std::stop_token& isOver) {
        while (!isOver.stop_requested()) listener->received({0xE0, 0, 0});
    });
    ASSERT_TRUE(comesToPass([&] { return *messages > 0; }));
    endpoints.stop();
    const int before = *messages;
    changes.clear();
    queue.advance(1s);
    EXPECT_EQ(*messages, before);
    EXPECT_TRUE(changes.empty());
    player.request_stop();
    player.join();
    preferred.isStuck = false;
    EXPECT_TRUE(comesToPass([&] { return preferred.connections == 0; })) << "let go of in the end";
}

}  // namespace
}  // namespace orbinex
