// A session with one phone: how it comes about, what it carries, and every way in which it ends.

#include <string>

#include "vm/link_scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

class SessionScenario : public LinkScenario {};

TEST_F(SessionScenario, aNewPhoneIsPairedTrustedAndKnownAgainAfterARestart) {
    searchForPhone();
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(phone().waitFor("hello", limit));
    EXPECT_TRUE(pointerFollows(phone()));
    expectShown({"Starting Bluetooth…", "Searching for iPhones running Orbinex…",
                 "Connecting to Studio iPhone…", "Securing connection with Studio iPhone…",
                 "Connected to Studio iPhone"});
    endProgram();
    ASSERT_TRUE(isLeft(phone()));

    startProgram();
    ASSERT_TRUE(becomesConnected()) << "without a question";
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(SessionScenario, textACircleAndAScrollArriveInAClient) {
    ASSERT_NO_FATAL_FAILURE(meet());
    XClient& client = desktop().client();
    client.takeEvents();

    std::string typed;
    phone().send("type Grüße, 12 €!");
    EXPECT_TRUE(waitUntil(
        [&] {
            typed += client.takeText();
            return typed.ends_with('!');
        },
        limit));
    EXPECT_EQ(typed, "Grüße, 12 €!");

    const auto start = client.pointer();
    client.takeEvents();
    int left = 0;
    int right = 0;
    int up = 0;
    int down = 0;
    phone().send("circle 50");
    EXPECT_TRUE(waitUntil(
        [&] {
            for (const auto& event : client.takeEvents()) {
                if (event.type != XClient::Event::Type::motion) continue;
                left = std::min(left, event.x - start.first);
                right = std::max(right, event.x - start.first);
                up = std::min(up, event.y - start.second);
                down = std::max(down, event.y - start.second);
            }
            const bool isWide = right - left >= 98 && down - up >= 98;
            return isWide && std::abs(client.pointer().first - start.first) <= 2 &&
                   std::abs(client.pointer().second - start.second) <= 2;
        },
        limit))
        << left << " " << right << " " << up << " " << down;

    int wheel = 0;
    client.takeEvents();
    phone().send("scroll 0 20");
    EXPECT_TRUE(waitUntil(
        [&] {
            for (const auto& event : client.takeEvents()) {
                if (event.type == XClient::Event::Type::buttonPress && event.detail == 5) ++wheel;
            }
            return wheel > 0;
        },
        limit));
}

TEST_F(SessionScenario, aPhoneOutOfRangeComesBackByItself) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    phone().send("power off");
    ASSERT_TRUE(shows("lost — reconnecting…"));
    phone().send("power on");
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(SessionScenario, aLinkThatDropsInADragLeavesNothingPressed) {
    ASSERT_NO_FATAL_FAILURE(meet());
    XClient& client = desktop().client();
    phone().send("down left");
    phone().send("key-down a");
    ASSERT_TRUE(waitUntil([&] { return client.buttonsDown() != 0 && !client.keysDown().empty(); }, limit));
    phone().send("drop");
    ASSERT_TRUE(shows("Connection to Studio iPhone lost — reconnecting…"));
    EXPECT_TRUE(waitUntil([&] { return client.buttonsDown() == 0 && client.keysDown().empty(); }, limit));
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(SessionScenario, anAppThatQuitsAndStartsAgainIsFound) {
    ASSERT_NO_FATAL_FAILURE(meet());
    phone().send("quit-app");
    ASSERT_TRUE(shows("Studio iPhone paused Orbinex"));
    phone().send("start-app");
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(SessionScenario, aServiceThatIsWithdrawnAndComesBackIsConnectedAgain) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    phone().send("withdraw");
    ASSERT_TRUE(shows("Studio iPhone paused Orbinex"));
    phone().send("offer");
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(SessionScenario, aDisconnectRequestIsGrantedAndThePhoneFoundAnew) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    phone().send("disconnect");
    ASSERT_TRUE(shows("Studio iPhone disconnected"));
    ASSERT_TRUE(becomesConnected());
    expectShown({"Studio iPhone disconnected", "Waiting for a trusted iPhone…",
                 "Connecting to Studio iPhone…", "Securing connection with Studio iPhone…",
                 "Connected to Studio iPhone"});
    EXPECT_TRUE(pointerFollows(phone()));
}

TEST_F(SessionScenario, aPhoneThatTheUserDisconnectsStaysDisconnectedUntilTheyConnectIt) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    program().send("disconnect");
    ASSERT_TRUE(phone().waitFor("goodbye", limit));
    ASSERT_TRUE(shows("Waiting for a trusted iPhone…"));
    // It is heard again and again meanwhile.
    EXPECT_FALSE(program().waitFor("Connecting", 15s));
    expectShown({"Disconnected from Studio iPhone", "Waiting for a trusted iPhone…"});
    ASSERT_NO_FATAL_FAILURE(connect());
    ASSERT_TRUE(becomesConnected());
    expectShown({"Connecting to Studio iPhone…", "Securing connection with Studio iPhone…",
                 "Connected to Studio iPhone"});
}

TEST_F(SessionScenario, theUserTurnsToAnotherPhoneAndBack) {
    ASSERT_NO_FATAL_FAILURE(meet());
    expectShown({"*", "*", "*", "*", "Connected to Studio iPhone"});
    Process& other = startSecondPhone();
    // The virtual controllers do not keep two links apart, so that the first one has to be gone.
    program().send("disconnect");
    ASSERT_TRUE(isLeft(phone()));
    ASSERT_TRUE(shows("Waiting for a trusted iPhone…"));
    ASSERT_NO_FATAL_FAILURE(pair("yes", otherName));
    ASSERT_TRUE(becomesConnected(otherName));
    EXPECT_TRUE(pointerFollows(other));
    expectShown({"Disconnected from Studio iPhone", "Waiting for a trusted iPhone…",
                 "Connecting to Other iPhone…", "Securing connection with Other iPhone…",
                 "Connected to Other iPhone"});

    program().send("disconnect");
    ASSERT_TRUE(isLeft(other));
    ASSERT_NO_FATAL_FAILURE(connect());
    ASSERT_TRUE(becomesConnected());
    EXPECT_TRUE(pointerFollows(phone()));
}

}  // namespace
}  // namespace orbinex::test
