// Pairing, and the ways back from a pairing that one side does not have any more.

#include <string>

#include "vm/link_scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

class PairingScenario : public LinkScenario {};

const std::string notCompleted =
    "Pairing Not Completed: Orbinex needs a secure Bluetooth pairing with Studio iPhone. Click Connect and "
    "accept "
    "the pairing request on both your Mac and iPhone.";
const std::string pairAgain =
    "Pair Studio iPhone Again: Studio iPhone no longer recognizes this Mac. Open System Settings → Bluetooth "
    "on "
    "this Mac, remove Studio iPhone from My Devices, then click Trust & Connect again.";

TEST_F(PairingScenario, refusedOnThePhoneIsToldAndMayBeTriedAgain) {
    startFirstPhone({"--pairing", "refuse"});
    startProgram();
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(shows("Pairing Not Completed"));
    ASSERT_TRUE(shows("Searching for iPhones running Orbinex…"));
    expectShown({"Starting Bluetooth…", "Searching for iPhones running Orbinex…",
                 "Connecting to Studio iPhone…", "Securing connection with Studio iPhone…",
                 "Pairing not completed", notCompleted, "Searching for iPhones running Orbinex…"});
    phone().send("pairing accept");
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(PairingScenario, refusedHereIsToldAndMayBeTriedAgain) {
    searchForPhone();
    ASSERT_NO_FATAL_FAILURE(pair("no"));
    ASSERT_TRUE(shows("Pairing Not Completed"));
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(becomesConnected());
}

TEST_F(PairingScenario, isNotAskedForAgainWhenThePhoneIsForgottenAndConnectedAnew) {
    ASSERT_NO_FATAL_FAILURE(meet());
    program().send("forget " + phoneName);
    ASSERT_TRUE(phone().waitFor("goodbye", limit));
    ASSERT_TRUE(shows("Searching for iPhones running Orbinex…"));
    EXPECT_FALSE(program().waitFor("Connecting", 10s));
    ASSERT_NO_FATAL_FAILURE(connect());
    ASSERT_TRUE(becomesConnected());
}

TEST_F(PairingScenario, removedInTheSettingsHereIsMadeAnew) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    const std::string address = bluetooth().address(phoneAdapter);
    ASSERT_TRUE(bluetooth().forget(hostAdapter, address));
    // The phone still has its half, and turns away a computer that has not.
    ASSERT_TRUE(shows("Pairing Not Completed"));
    phone().send("forget");
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(PairingScenario, forgottenByThePhoneIsToldAndMadeAnewAfterItsRemovalHere) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    phone().send("forget");
    ASSERT_TRUE(shows("Pair Studio iPhone Again"));
    ASSERT_TRUE(shows("Waiting for a trusted iPhone…"));
    expectShown({"Connection to Studio iPhone lost — reconnecting…", "Waiting for a trusted iPhone…", "*",
                 pairAgain, "Waiting for a trusted iPhone…"});
    ASSERT_TRUE(bluetooth().forget(hostAdapter, bluetooth().address(phoneAdapter)));
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

}  // namespace
}  // namespace orbinex::test
