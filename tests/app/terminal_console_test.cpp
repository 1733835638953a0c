#include "app/terminal_console.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "app/plain_line.h"
#include "app/terminal_prompt.h"
#include "link/link_texts.h"
#include "protocol/device_info.h"
#include "sim/memory_defaults.h"
#include "sim/recording_bridge.h"
#include "sim/recording_event_poster.h"
#include "sim/scripted_layout.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

/// The program with a person at its terminal, and what the console has answered.
struct Terminal {
    VirtualMainQueue queue;
    MemoryDefaults defaults;
    SimulatedRadio radio{queue};
    WakeNotifier wake;
    RecordingEventPoster poster;
    ScriptedLayoutSource layouts;
    RecordingBridge bridge;
    SimulatedShell shell;
    AppPreferences preferences{defaults};
    AppCoordinator app{
        preferences,
        {queue, defaults, radio, wake, poster, layouts, bridge, [] { return std::string(); }, shell.ports()}};
    Lines printed;
    Lines statuses;  ///< that a line has set off
    Subscription observer = app.centralManager.statusMessage.onDidChange(
        [this](const std::string& line) { statuses.push_back(line); });
    int quits = 0;
    TerminalPrompt prompt{[this](const std::string& line) { printed.push_back(line); }};
    TerminalConsole console{app, prompt, [this](const std::string& line) { printed.push_back(line); },
                            [this] { ++quits; }};

    SimulatedPhone& addPhone(const std::string& name, int rssi = -50) {
        auto& phone = radio.addPhone(UUID::random(), {2, UUID::random(), name});
        phone.rssi = rssi;
        queue.advance(2s);
        return phone;
    }
    /// What a line prints, also after what it has set off.
    Lines type(const std::string& line) {
        statuses.clear();
        console.execute(line);
        queue.advance(2s);
        return std::exchange(printed, {});
    }
    [[nodiscard]] LinkPhase phase() const { return *app.centralManager.phase; }
    [[nodiscard]] std::string status() const { return *app.centralManager.statusMessage; }
    [[nodiscard]] std::string firstStatus() const { return statuses.empty() ? "" : statuses.front(); }
};

TEST(TerminalConsole, saysWhatIsWrongWithALine) {
    Terminal terminal;
    terminal.addPhone("Studio iPhone");
    const std::string nobody = "No iPhone of that name or number is trusted or nearby.";
    const struct {
        std::string line;
        Lines expected;
    } rows[] = {
        {"", {}},
        {" \t ", {}},
        {"dance", {"There is no such command; try help."}},
        {"CONNECT 1", {"There is no such command; try help."}},
        {std::string("\0\x1b[2J", 5), {"There is no such command; try help."}},
        {std::string(4096, 'x'), {"There is no such command; try help."}},
        {"connect", {"Usage: connect NUMBER|NAME"}},
        {"disconnect now", {"Usage: disconnect"}},
        {"auto", {"Usage: auto on|off"}},
        {"auto maybe", {"Usage: auto on|off"}},
        {"connect 0", {nobody}},
        {"connect 2", {nobody}},
        {"connect -1", {nobody}},
        {"connect 99999999999999999999", {nobody}},
        {"connect Studio", {nobody}},
        {"connect \xff\xfe", {nobody}},
        {"forget Studio iPhone", {"It is not trusted."}},
        {"disconnect", {"Nothing is connected."}},
        {"cancel", {"Nothing is connecting."}},
        {"yes", {"Nothing is asked."}},
        {"no", {"Nothing is asked."}},
        {"  status  ", {LinkText::searching(false)}},
    };
    for (const auto& row : rows) EXPECT_EQ(terminal.type(row.line), row.expected) << row.line;
    EXPECT_EQ(terminal.phase(), LinkPhase::searching);
}

TEST(TerminalConsole, listsWhoIsTrustedAndWhoIsNearbyWithTheStrongestFirst) {
    Terminal terminal;
    EXPECT_EQ(terminal.type("list"), (Lines{"No iPhone is trusted or nearby."}));
    auto& studio = terminal.addPhone("Studio iPhone", -70);
    terminal.addPhone("Other iPhone", -40);
    EXPECT_EQ(terminal.type("list"),
              (Lines{"1. Other iPhone (new, -40 dBm)", "2. Studio iPhone (new, -70 dBm)"}));
    terminal.type("connect 2");
    EXPECT_EQ(terminal.status(), LinkText::connected("Studio iPhone"));
    // The other one is not searched for while there is a connection.
    EXPECT_EQ(terminal.type("list").front(), "1. Studio iPhone (trusted, connected)");
    terminal.type("disconnect");
    EXPECT_EQ(terminal.type("list").front(), "1. Studio iPhone (trusted, -70 dBm)");
    studio.setAdvertising(false);
    terminal.queue.advance(20s);
    EXPECT_EQ(terminal.type("list"),
              (Lines{"1. Studio iPhone (trusted, not nearby)", "2. Other iPhone (new, -40 dBm)"}));
}

TEST(TerminalConsole, leadsAConnectionThroughItsLife) {
    Terminal terminal;
    auto& phone = terminal.addPhone("Studio iPhone");
    phone.connectStep.isAnswered = false;
    terminal.type("connect Studio iPhone");
    EXPECT_EQ(terminal.phase(), LinkPhase::connecting);
    terminal.type("cancel");
    EXPECT_EQ(terminal.firstStatus(), LinkText::cancelled());

    phone.connectStep.isAnswered = true;
    terminal.type("connect Studio iPhone");
    EXPECT_EQ(terminal.phase(), LinkPhase::connected);
    terminal.type("disconnect");
    EXPECT_EQ(terminal.firstStatus(), LinkText::disconnectedFrom("Studio iPhone"));
    terminal.queue.advance(60s);
    EXPECT_FALSE(phone.isConnected()) << "who was sent away stays away";

    terminal.type("connect 1");
    EXPECT_EQ(terminal.phase(), LinkPhase::connected);
    EXPECT_EQ(terminal.type("forget 1"), (Lines{"Forgotten."}));
    EXPECT_TRUE(terminal.app.trustStore.devices->empty());
    EXPECT_FALSE(phone.isConnected());
}

TEST(TerminalConsole, setsAndStoresWhetherTrustedPhonesConnectByThemselves) {
    Terminal terminal;
    auto& phone = terminal.addPhone("Studio iPhone");
    terminal.type("connect 1");
    terminal.type("auto off");
    EXPECT_FALSE(terminal.app.centralManager.autoConnectEnabled());
    EXPECT_FALSE(AppPreferences(terminal.defaults).autoConnect.get()) << "the next start must know";
    phone.dropLink();
    terminal.queue.advance(60s);
    EXPECT_FALSE(phone.isConnected());
    terminal.type("auto on");
    EXPECT_TRUE(phone.isConnected());
}

TEST(TerminalConsole, asksForANumberWhenANameIsSharedAndKeepsNumbersAsTheyWereListed) {
    Terminal terminal;
    auto& near = terminal.addPhone("iPhone", -40);
    auto& far = terminal.addPhone("iPhone", -70);
    EXPECT_EQ(terminal.type("connect iPhone"),
              (Lines{"Several are called so; use the number that list shows."}));
    terminal.type("list");
    // They change places on the radio, not on the screen.
    near.rssi = -80;
    terminal.queue.advance(3s);
    terminal.type("connect 2");
    EXPECT_TRUE(far.isConnected());
    EXPECT_FALSE(near.isConnected());

    terminal.type("disconnect");
    terminal.type("list");
    near.setInRange(false);
    terminal.queue.advance(20s);
    EXPECT_EQ(terminal.type("connect 2"), (Lines{"It is not there any more."}));
    terminal.type("forget 1");
    EXPECT_EQ(terminal.type("forget 1"), (Lines{"It is not trusted."}));
}

TEST(TerminalConsole, takesANameOfDigitsForANameWhenNoSuchNumberIsListed) {
    Terminal terminal;
    auto& phone = terminal.addPhone("13");
    terminal.type("list");
    terminal.type("connect 13");
    EXPECT_TRUE(phone.isConnected());
}

TEST(TerminalConsole, quitsAndHelps) {
    Terminal terminal;
    const auto help = terminal.type("help");
    for (const std::string name :
         {"help", "list", "connect NUMBER|NAME", "disconnect", "cancel", "forget NUMBER|NAME", "rescan",
          "auto on|off", "status", "yes", "no", "quit"}) {
        EXPECT_TRUE(std::ranges::any_of(help, [&](const auto& line) { return line.starts_with(name + " "); }))
            << name;
    }
    EXPECT_EQ(terminal.quits, 0);
    terminal.type("quit");
    EXPECT_EQ(terminal.quits, 1);
}

TEST(TerminalPrompt, asksAndTakesOneAnswer) {
    Terminal terminal;
    Lines answers;
    const auto ask = [&](const std::optional<std::string>& digits) {
        terminal.prompt.ask("Studio iPhone", digits,
                            [&](bool isAccepted) { answers.emplace_back(isAccepted ? "yes" : "no"); });
        return std::exchange(terminal.printed, {});
    };
    EXPECT_EQ(ask("012345"), (Lines{R"(Pair with "Studio iPhone"? It shows 012345. Type yes or no.)"}));
    EXPECT_EQ(terminal.type("yes"), Lines{});
    EXPECT_EQ(terminal.type("yes"), (Lines{"Nothing is asked."}));
    EXPECT_EQ(ask(std::nullopt),
              (Lines{R"(Pair with "Studio iPhone"? It shows no digits to compare. Type yes or no.)"}));
    terminal.type("no");
    EXPECT_EQ(answers, (Lines{"yes", "no"}));

    ask("000000");
    terminal.prompt.withdraw();
    EXPECT_EQ(terminal.type("yes"), (Lines{"The question about pairing is withdrawn.", "Nothing is asked."}));
    EXPECT_EQ(answers.size(), 2U);
}

TEST(TerminalPrompt, letsNoNameSpeakForTheProgram) {
    Terminal terminal;
    terminal.prompt.ask("iPhone\"? It shows 111111.", "222222", [](bool) {});
    EXPECT_EQ(terminal.printed,
              (Lines{R"(Pair with "iPhone'? It shows 111111."? It shows 222222. Type yes or no.)"}));
}

TEST(TerminalText, isOneLineThatMovesNothing) {
    const struct {
        std::string text;
        std::string expected;
    } rows[] = {
        {"", ""},
        {"Wörk — 日本 👩‍💻 ❤️", "Wörk — 日本 👩‍💻 ❤️"},
        {"a\nb\r\tc\x1b[2J\x7f", "a?b??c?[2J?"},
        {std::string("\0", 1), "?"},
        {"\xc2\x9b"
         "31m",
         "?31m"},
        {"a\u2028b\u2029\u0085", "a?b??"},
        {"\u202e654321\u202c \u2066x\u2069 \u200f", "?654321? ?x? ?"},
        {"\xff"
         "a\xe2\x80",
         "\uFFFDa\uFFFD"},
    };
    for (const auto& row : rows) EXPECT_EQ(plainLine(row.text), row.expected) << row.expected;
}

}  // namespace
}  // namespace orbinex
