#include "vm/process.h"

#include <gtest/gtest.h>

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

Process shell(const std::string& script) {
    return Process("shell", {"sh", "-c", script});
}

TEST(VmProcess, talksToAProgramLineByLine) {
    Process program = shell("while read -r word; do echo \"said $word\"; done; printf unfinished; exit 3");
    EXPECT_TRUE(program.send("one"));
    EXPECT_TRUE(program.send("two"));
    ASSERT_TRUE(program.waitFor(std::regex("said t.o"), 20s));
    EXPECT_EQ(program.found(), "said two");
    EXPECT_FALSE(program.waitFor("said one", 0s)) << "a line before the one that was found";
    program.closeInput();
    EXPECT_EQ(program.waitForEnd(20s), 3);
    EXPECT_EQ(program.lines(), (std::vector<std::string>{"said one", "said two", "unfinished"}));
    EXPECT_FALSE(program.send("three"));
}

TEST(VmProcess, tellsWhatCameInsteadOfALine) {
    Process program = shell("echo this; echo that; exit 0");
    const auto result = program.waitFor("other", 20s);
    EXPECT_FALSE(result);
    EXPECT_STREQ(result.message(),
                 "shell ended without printing \"other\" within 20 s, but\n    this\n    that");
}

TEST(VmProcess, doesNotLetOneProgramBlockWhileAnotherIsWaitedFor) {
    // Far more than a pipe holds.
    Process talker("talker", {"sh", "-c", "seq 100000; echo done"}, {}, "/dev/null");
    Process loud("loud", {"sh", "-c", "i=0; while [ $i -lt 9000 ]; do i=$((i+1)); echo $i-----------; done"});
    EXPECT_EQ(talker.waitForEnd(60s), 0);
    EXPECT_EQ(loud.waitForEnd(60s), 0);
    EXPECT_EQ(loud.lines().size(), 9000U);
    EXPECT_TRUE(talker.lines().empty());
}

TEST(VmProcess, tellsHowAProgramEnded) {
    Process killed = shell("echo up; read -r never");
    ASSERT_TRUE(killed.waitFor("up", 20s));
    EXPECT_GE(killed.openDescriptors(), 3);
    EXPECT_FALSE(killed.waitForEnd(0s).has_value());
    killed.kill();
    EXPECT_EQ(killed.waitForEnd(0s), -9);
    EXPECT_EQ(killed.openDescriptors(), 0);

    Process asked = shell("trap 'exit 7' TERM; echo up; while :; do read -r never; done");
    ASSERT_TRUE(asked.waitFor("up", 20s));
    asked.terminate();
    EXPECT_EQ(asked.waitForEnd(20s), 7);

    Process missing("missing", {"/nowhere/at/all"});
    EXPECT_EQ(missing.waitForEnd(20s), 127);
}

TEST(VmProcess, givesAProgramItsEnvironmentAndKeepsTheRest) {
    Process program("env", {"sh", "-c", "echo $ORBINEX_WORD; echo $PATH"}, {{"ORBINEX_WORD", "hello"}});
    EXPECT_TRUE(program.waitFor("hello", 20s));
    EXPECT_TRUE(program.waitFor("/", 20s));
}

TEST(VmProcess, countsTheProcessorTime) {
    Process busy = shell("while :; do :; done");
    EXPECT_TRUE(waitUntil([&] { return busy.processorTime() >= 50ms; }, 60s));
}

}  // namespace
}  // namespace orbinex::test
