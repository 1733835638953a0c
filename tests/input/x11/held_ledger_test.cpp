#include "input/x11/held_ledger.h"

#include <csignal>
#include <functional>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "input/x11/x11_test.h"

namespace orbinex::test {
namespace {

class X11LedgerTest : public X11Test {
  protected:
    /// Does the work in a process of its own, which is then killed without notice.
    static void doAndDie(const std::function<void(X11Input&)>& work) {
        const pid_t child = ::fork();
        if (child == 0) {
            {
                X11Input input(server->display());
                work(input);
                input.sync();
                ::raise(SIGKILL);
            }
            ::_exit(1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    }
    static void key(X11Input& input, std::uint16_t code, ModifierFlags modifiers, KeyState state) {
        input.manager.handle({DecodedPacket::KeyStroke{code, modifiers, state}});
    }
};

TEST_F(X11LedgerTest, whatAKilledProcessHeldIsReleasedByTheNext) {
    doAndDie([](X11Input& input) {
        key(input, 0, ModifierFlags::command | ModifierFlags::shift, KeyState::pressed);
        key(input, 58, ModifierFlags::option, KeyState::pressed);
        input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
        input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::right, KeyState::pressed}});
        input.manager.handle({DecodedPacket::Text{"жщ😀", {}, std::nullopt}});
    });
    EXPECT_FALSE(client->keysDown().empty());
    EXPECT_NE(client->buttonsDown(), 0U);
    EXPECT_NE(client->keyboardMap(), keyboardMapBefore);

    X11Input next(server->display());
    next.sync();
    EXPECT_TRUE(client->keysDown().empty());
    EXPECT_EQ(client->buttonsDown(), 0U);
    EXPECT_EQ(client->keyboardMap(), keyboardMapBefore);
    EXPECT_EQ(typed(next, "Aж"), "Aж");
}

TEST_F(X11LedgerTest, aKilledProcessInTheMiddleOfLongTextLeavesNothing) {
    std::string text;
    for (int i = 0; i < 40; ++i) text += std::string("\xD0") + static_cast<char>(0x90 + i);
    doAndDie([&](X11Input& input) {
        input.manager.handle({DecodedPacket::Text{text, {}, std::nullopt}});
        key(input, 0, {}, KeyState::pressed);
    });
    EXPECT_NE(client->keyboardMap(), keyboardMapBefore);
    const X11Input next(server->display());
}

TEST_F(X11LedgerTest, aSecondInstanceLeavesALiveOneAlone) {
    X11Input first(server->display());
    key(first, 0, ModifierFlags::shift, KeyState::pressed);
    first.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
    first.sync();
    const auto held = client->keysDown();
    {
        X11Input second(server->display());
        second.sync();
        EXPECT_EQ(client->keysDown(), held);
        EXPECT_NE(client->buttonsDown(), 0U);
        key(second, 1, {}, KeyState::pressed);
        second.sync();
        EXPECT_TRUE(client->hasRootProperty("_ORBINEX_HELD_1"));
    }
    EXPECT_EQ(client->keysDown(), held);
    first.manager.releaseAll();
    first.queue.advance(X11EventPoster::restTime);
    first.sync();
}

TEST_F(X11LedgerTest, releasingEverythingEmptiesTheServerAndDropsWhatWaits) {
    X11Input input(server->display());
    std::string text;
    for (int i = 0; i < 40; ++i) text += std::string("\xD0") + static_cast<char>(0x90 + i);
    key(input, 0, ModifierFlags::command, KeyState::pressed);
    key(input, 57, {}, KeyState::released);
    input.manager.handle({DecodedPacket::MouseButtonChange{MouseButton::right, KeyState::pressed}});
    input.manager.handle({DecodedPacket::Text{text, {}, std::nullopt}});
    input.poster.releaseEverything();
    input.sync();
    EXPECT_EQ(client->keyboardMap(), keyboardMapBefore);
    EXPECT_TRUE(client->keysDown().empty());
    client->takeEvents();
    letTimePass(input);
    EXPECT_TRUE(client->takeEvents().empty());
    // And it goes on working.
    EXPECT_EQ(typed(input, "ok ж"), "ok ж");
}

TEST_F(X11LedgerTest, aLedgerThatSomebodyElseWroteDoesNoHarm) {
    const std::vector<std::vector<unsigned long>> ledgers{
        {},
        {1},
        {0xFFFFFFFF, 0xFFFFFFFF},
        // A key that is not ours to empty, and numbers that are none.
        {0x300 | 38, 0x61, 0x300 | 38, 0x1000436, 0x100 | 3, 0, 0x200 | 99, 0, 0x900, 0},
        std::vector<unsigned long>(600, 0x126),
    };
    for (const auto& words : ledgers) {
        client->setRootProperty("_ORBINEX_HELD_0", words);
        client->setRootProperty("_ORBINEX_HELD_7", words);
        X11Input input(server->display());
        input.sync();
        EXPECT_EQ(client->keyboardMap(), keyboardMapBefore);
        EXPECT_FALSE(client->hasRootProperty("_ORBINEX_HELD_7"));
    }
}

TEST(HeldItems, surviveWritingAndReadingAndOnlyPossibleOnesDo) {
    using Kind = HeldItem::Kind;
    const std::vector<HeldItem> items{
        {Kind::key, 50, 0}, {Kind::button, 9, 0}, {Kind::spareKey, 248, 0x101F600}};
    EXPECT_EQ(decodeHeldItems(encodeHeldItems(items)), items);
    const std::vector<HeldItem> impossible{{Kind::key, 7, 0},       {Kind::key, 50, 1},
                                           {Kind::button, 0, 0},    {Kind::button, 10, 0},
                                           {Kind::spareKey, 50, 0}, {Kind{9}, 50, 0}};
    EXPECT_TRUE(decodeHeldItems(encodeHeldItems(impossible)).empty());
    EXPECT_TRUE(decodeHeldItems(std::vector<unsigned long>{0x1000132, 0, 0x150}).empty());
}

TEST(X11Connection, outlivesItsServer) {
    auto server = std::make_unique<PrivateXServer>();
    EXPECT_EQ(X11Connection::open(":987654"), nullptr);
    X11Input input(server->display());
    input.manager.handle({DecodedPacket::KeyStroke{0, ModifierFlags::command, KeyState::pressed}});
    server->kill();
    for (int i = 0; i < 3; ++i) {
        input.manager.handle({DecodedPacket::MouseMove{1, 1}});
        input.manager.handle({DecodedPacket::MouseClick{MouseButton::left, 2}});
        input.manager.handle({DecodedPacket::Text{"aж", {}, std::nullopt}});
        input.manager.handle({DecodedPacket::MouseScroll{5, 50}});
        input.connection->processEvents();
        input.queue.advance(std::chrono::seconds(1));
    }
    EXPECT_FALSE(input.connection->isAlive());
    input.manager.releaseAll();
}

}  // namespace
}  // namespace orbinex::test
