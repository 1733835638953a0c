#include "test_phone/command.h"

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/line_reader.h"
#include "protocol/control_message.h"
#include "test_phone/transcript.h"

namespace orbinex::test_phone {
namespace {

using testing::ElementsAre;

/// The bytes that go over the air for a line, a packet each; "?" for a line that is not understood.
std::vector<std::string> sent(std::string_view line) {
    const auto command = parseCommand(line);
    if (std::holds_alternative<Mistake>(command)) return {"?"};
    const auto& value = std::get<Command>(command).value;
    if (const auto* notification = std::get_if<Command::Notification>(&value)) {
        return {std::string(name(notification->characteristic)) + " " + hex(notification->value)};
    }
    std::vector<std::string> result;
    for (const auto& packet : std::get<Command::Input>(value).packets) result.push_back(hex(packet.encode()));
    return result;
}

TEST(PhoneCommands, becomeWhatTheIPhoneSends) {
    const struct {
        const char* line;
        std::vector<std::string> sent;
    } rows[] = {
        {"move 1 -2", {"010000803f000000c0"}},
        {"  move   1   -2  ", {"010000803f000000c0"}},
        {"scroll 0 0.5", {"03000000000000003f"}},
        {"click", {"020101"}},
        {"click left", {"020101"}},
        {"click right 3", {"020201", "020202", "020203"}},
        {"down", {"060101"}},
        {"up right", {"060200"}},
        {"key return shift", {"0424000101", "0424000100"}},
        {"key 36 command option", {"0424000c01", "0424000c00"}},
        {"key-down left", {"047b000001"}},
        {"key-up left", {"047b000000"}},
        {"type hi there ", {"0500ffff686920", "0500ffff746865726520"}},
        {"type wörld", {"0500ffff77c3b6726c64"}},
        {"text none none a b", {"0500ffff612062"}},
        {"text shift+command c C", {"0509080043"}},
        {"command VOL|3|-6.5", {"control 16564f4c7c337c2d362e35"}},
        {"disconnect", {"control 11"}},
        {"send mouse 00 FFa0", {"mouse 00ffa0"}},
        {"send keyboard", {"keyboard "}},
    };
    for (const auto& row : rows) EXPECT_EQ(sent(row.line), row.sent) << row.line;
}

TEST(PhoneCommands, areRefusedWhenWrong) {
    for (const auto* line : {"fly",
                             "move",
                             "move 1",
                             "move 1 x",
                             "move 1 2 3",
                             "move nan 1",
                             "move 1e40 0",
                             "circle 0",
                             "circle -3",
                             "click middle",
                             "click left 0",
                             "click left 4",
                             "down left now",
                             "key",
                             "key nokey",
                             "key 65536",
                             "key -1",
                             "key return hyper",
                             "type",
                             "type \xC3",
                             "text none none",
                             "text none none ",
                             "text hyper none x",
                             "text none nokey x",
                             "text none none \xFF",
                             "command",
                             "command VOL|3",
                             "command sync",
                             "send info 00",
                             "send mouse 0",
                             "send mouse 0g",
                             "send mouse 00 1",
                             "rate 125",
                             "rate 0 1",
                             "rate 2001 1",
                             "rate 1 0",
                             "rate 1 nan",
                             "rate 1 1e9",
                             "info",
                             "info xy",
                             "info silent x",
                             "power",
                             "power maybe",
                             "advertise on off",
                             "pairing",
                             "pairing perhaps",
                             "quit now",
                             "status all"}) {
        EXPECT_TRUE(std::holds_alternative<Mistake>(parseCommand(line))) << line;
    }
}

TEST(PhoneCommands, thatAreNotInputKeepWhatTheySay) {
    const auto value = [](std::string_view line) { return std::get<Command>(parseCommand(line)).value; };
    const auto rate = std::get<Command::Rate>(value("rate 250 0.5"));
    EXPECT_EQ(rate.perSecond, 250);
    EXPECT_EQ(rate.total, 125U);

    using Subject = Command::Switch::Subject;
    const struct {
        const char* line;
        Subject subject;
        bool isOn;
    } switches[] = {
        {"withdraw", Subject::service, false},
        {"offer", Subject::service, true},
        {"quit-app", Subject::app, false},
        {"start-app", Subject::app, true},
        {"advertise off", Subject::advertising, false},
        {"power on", Subject::power, true},
    };
    for (const auto& row : switches) {
        const auto change = std::get<Command::Switch>(value(row.line));
        EXPECT_EQ(change.subject, row.subject) << row.line;
        EXPECT_EQ(change.isOn, row.isOn) << row.line;
    }

    EXPECT_EQ(std::get<Command::Info>(value("info 01 02")).bytes, (Bytes{1, 2}));
    EXPECT_EQ(std::get<Command::Info>(value("info refused")).kind, Command::Info::Kind::refused);
    EXPECT_EQ(std::get<Command::SetPairing>(value("pairing ask")).answer, PairingAnswer::ask);
    EXPECT_TRUE(std::get<Command::AnswerPairing>(value("yes")).isAccepted);
}

TEST(PhoneCommands, areAllInTheHelp) {
    LineReader reader;
    const auto lines = reader.take(commandHelp());
    EXPECT_GT(lines.size(), 20U);
    for (const auto& line : lines) {
        const auto command = parseCommand(commandName(line));
        const auto* mistake = std::get_if<Mistake>(&command);
        EXPECT_TRUE(!mistake || mistake->text.starts_with("usage: ")) << line;
    }
}

TEST(PhoneGestures, aCircleEndsWhereItBegan) {
    double x = 0;
    double y = 0;
    double farthest = 0;
    for (const auto& packet : circle(80)) {
        const auto move = std::get<DecodedPacket::MouseMove>(packet.value);
        x += move.deltaX;
        y += move.deltaY;
        farthest = std::max(farthest, std::hypot(x, y));
    }
    EXPECT_NEAR(std::hypot(x, y), 0, 0.01);
    EXPECT_NEAR(farthest, 160, 0.5);
}

TEST(PhoneGestures, longTextIsCutBetweenCharacters) {
    const std::string family = "👩‍👩‍👧‍👦";
    std::string word;
    for (int i = 0; i < 9; ++i) word += family;
    std::string together;
    for (const auto& packet : typedText(word + " end")) {
        const auto& text = std::get<DecodedPacket::Text>(packet.value).text;
        EXPECT_LE(text.size(), 100U);
        EXPECT_TRUE(text == "end" || text.size() % family.size() == (text.ends_with(" ") ? 1U : 0U)) << text;
        together += text;
    }
    EXPECT_EQ(together, word + " end");
    // One character of its own length is not cut, however long.
    std::string accents = "e";
    for (int i = 0; i < 80; ++i) accents += "\u0301";
    EXPECT_EQ(typedText(accents).size(), 1U);
}

TEST(LineReader, joinsPiecesAndKnowsBothLineEnds) {
    LineReader reader;
    EXPECT_THAT(reader.take("mo"), ElementsAre());
    EXPECT_THAT(reader.take("ve 1 2\r\n\nup"), ElementsAre("move 1 2", ""));
    EXPECT_EQ(reader.unfinished(), "up");
}

}  // namespace
}  // namespace orbinex::test_phone
