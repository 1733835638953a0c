// The adapter, bluetoothd or the program goes away in every phase, and comes back.

#include <string>

#include "vm/link_scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

/// How far the program has come.
enum class Phase { searching, askingToPair, connected };

class PowerScenario : public LinkScenario, public testing::WithParamInterface<Phase> {
  protected:
    void reachPhase() {
        searchForPhone();
        if (GetParam() == Phase::searching) return;
        ASSERT_NO_FATAL_FAILURE(connect());
        ASSERT_TRUE(program().waitFor(std::regex("Pair with .*[0-9]{6}"), limit));
        if (GetParam() == Phase::askingToPair) return;
        program().send("yes");
        ASSERT_TRUE(becomesConnected());
    }
    /// All is as if nothing had been.
    void worksAgain() {
        if (GetParam() == Phase::connected) {
            ASSERT_TRUE(becomesConnected());
        } else {
            ASSERT_NO_FATAL_FAILURE(pair("yes"));
            ASSERT_TRUE(becomesConnected());
        }
        EXPECT_TRUE(pointerFollows(phone()));
    }
};

TEST_P(PowerScenario, theAdapterIsSwitchedOffAndOn) {
    ASSERT_NO_FATAL_FAILURE(reachPhase());
    ASSERT_TRUE(bluetooth().setPowered(hostAdapter, false));
    ASSERT_TRUE(shows("Bluetooth is turned off. Turn it on in Control Center or System Settings."));
    ASSERT_TRUE(bluetooth().setPowered(hostAdapter, true));
    worksAgain();
}

TEST_P(PowerScenario, bluetoothdIsKilledAndStartedAgain) {
    ASSERT_NO_FATAL_FAILURE(reachPhase());
    daemon().kill();
    ASSERT_TRUE(shows("Bluetooth is restarting…"));
    ASSERT_TRUE(daemon().start());
    phone().terminate();
    EXPECT_TRUE(phone().waitForEnd(limit));
    startFirstPhone();
    worksAgain();
}

TEST_P(PowerScenario, theProgramIsKilledAndStartedAgain) {
    ASSERT_NO_FATAL_FAILURE(reachPhase());
    program().kill();
    startProgram();
    worksAgain();
}

const char* phaseName(Phase phase) {
    switch (phase) {
        case Phase::searching: return "searching";
        case Phase::askingToPair: return "askingToPair";
        case Phase::connected: break;
    }
    return "connected";
}

INSTANTIATE_TEST_SUITE_P(InEveryPhase, PowerScenario,
                         testing::Values(Phase::searching, Phase::askingToPair, Phase::connected),
                         [](const auto& test) { return phaseName(test.param); });

}  // namespace
}  // namespace orbinex::test
