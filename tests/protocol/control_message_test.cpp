#include "protocol/control_message.h"

#include <gtest/gtest.h>

#include "support/byte_transcript.h"

using namespace orbinex;
using orbinex::test::hex;
using orbinex::test::typed;

namespace {

using M = ControlMessage;

TEST(ControlMessage, readsAndWritesThoseThatAreNoSessionRecords) {
    const std::pair<const char*, M> cases[] = {
        {"10 02 4D 61 63", {M::Hello{2, "Mac"}}},
        {"10 07", {M::Hello{7, ""}}},
        {"11", {M::DisconnectRequest{}}},
        {"12", {M::Goodbye{}}},
        {"13 61 2E 62", {M::ActiveApp{"a.b"}}},
        {"16 53 59 4E 43", {DAWCommand{DAWCommand::RequestSnapshot{}}}},
        {"16 4D 55 54 45 7C 32 7C 31", {DAWCommand{DAWCommand::SetTrackMute{2, true}}}},
    };
    for (const auto& [bytes, message] : cases) {
        EXPECT_EQ(M::decode(hex(bytes)), message) << bytes;
        EXPECT_EQ(message.encode(), hex(bytes)) << bytes;
    }
}

TEST(ControlMessage, ignoresWhatFollowsTheWordlessOnes) {
    EXPECT_EQ(M::decode(hex("11 FF")), M{M::DisconnectRequest{}});
    EXPECT_EQ(M::decode(hex("12 00 01")), M{M::Goodbye{}});
}

TEST(ControlMessage, isNothingWhenUnknownOrTooShort) {
    for (const char* const bytes :
         {"", "00", "0F 41", "18 41", "FF", "10", "13", "14", "15", "16", "17", "16 C3", "15 58 7C"}) {
        EXPECT_FALSE(M::decode(hex(bytes))) << bytes;
    }
}

TEST(ControlMessage, repairsBrokenText) {
    EXPECT_EQ(M::decode(hex("10 02 41 C3")), (M{M::Hello{2, "A\uFFFD"}}));
    EXPECT_EQ(M::decode(hex("13 FF")), M{M::ActiveApp{"\uFFFD"}});
    EXPECT_EQ(M::decode(hex("16 50 41 47 45 7C C3")), M{DAWCommand{DAWCommand::OpenPage{"\uFFFD"}}});
}

TEST(ControlMessage, trimsControlCharactersOffAnApplication) {
    EXPECT_EQ(M::decode(typed(0x13, "   \n")), M{M::ActiveApp{"   "}});
    EXPECT_EQ(M::decode(typed(0x13, "\r\u200Ea\tb\u0085")), M{M::ActiveApp{"a\tb"}});
    EXPECT_FALSE(M::decode(typed(0x13, "\n")));
    EXPECT_FALSE(M::decode(typed(0x13, "\u200B\x7F")));
}

TEST(ControlMessage, looksAtNoMoreThanTheFirst128BytesOfAnApplication) {
    EXPECT_EQ(M::decode(typed(0x13, std::string(129, 'a'))), M{M::ActiveApp{std::string(128, 'a')}});
    EXPECT_EQ(M::decode(typed(0x13, std::string(127, 'a') + "\u00E9")),
              M{M::ActiveApp{std::string(127, 'a') + "\uFFFD"}});
    EXPECT_FALSE(M::decode(typed(0x13, std::string(128, '\n') + "a")));
}

TEST(ControlMessage, cutsNamesAt64BytesEvenWithinACharacter) {
    Bytes expected = typed(0x10, "\x02" + std::string(64, 'n'));
    EXPECT_EQ(encodeHello(std::string(70, 'n')), expected);
    EXPECT_EQ(encodeHello(std::string(64, 'n')), expected);
    expected.back() = 0xC3;
    EXPECT_EQ(encodeHello(std::string(63, 'n') + "\u00E9"), expected);
    EXPECT_EQ(encodeActiveApp(std::string(63, 'n') + "\u00E9"), typed(0x13, std::string(63, 'n') + "\xC3"));
    EXPECT_EQ((M{M::Hello{2, std::string(70, 'n')}}.encode()).size(), 66U);
}

TEST(ControlMessage, greetsWithTheComputersNameOrADefault) {
    EXPECT_EQ(macName("Studio"), "Studio");
    EXPECT_EQ(macName(""), "Mac");
    EXPECT_EQ(encodeHello("Mac"), hex("10 02 4D 61 63"));
    EXPECT_EQ(encodeGoodbye(), hex("12"));
}

}  // namespace
