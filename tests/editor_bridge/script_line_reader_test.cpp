#include "editor_bridge/script_line_reader.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

using Lines = std::vector<std::string>;

struct Output {
    void read(std::string_view bytes) {
        reader.take({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                    [this](std::string_view line) {
                        lines.emplace_back(line);
                        if (line == lastBeforeClear) reader.clear();
                    });
    }

    ScriptLineReader reader;
    Lines lines;
    std::string lastBeforeClear = "never";
};

TEST(ScriptLineReader, isTheSameHoweverItIsCut) {
    const std::string all = "OXTC|é|日本|👩‍💻\r\n\n  spaces\u2003 \t\nlast one\nunfinished";
    const Lines expected{"OXTC|é|日本|👩‍💻", "", "spaces", "last one"};
    for (std::size_t size = 1; size <= all.size(); ++size) {
        Output output;
        for (std::size_t at = 0; at < all.size(); at += size)
            output.read(std::string_view(all).substr(at, size));
        EXPECT_EQ(output.lines, expected) << size;
    }
}

TEST(ScriptLineReader, losesTheReadThatIsNoUTF8AndTheLineThatItIsPartOf) {
    const struct {
        Lines reads;
        Lines expected;
    } rows[] = {
        {{"one\ntwo", "\xFF", "-two\nthree\n"}, {"one", "three"}},
        {{"one\ntwo", "\xFF\n", "three\n"}, {"one", "three"}},
        {{"\xC3", "(\n", "two\n"}, {"two"}},
        {{"\xC3\n", "two\n"}, {"two"}},
        {{"\xE2\x82", "\xAC\n"}, {"€"}},
        {{"\xF0\x9F", "\x98", "\x80", "\n"}, {"😀"}},
        {{"a\xED\xA0\x80\n", "b\n"}, {"b"}},
        {{std::string("nul\0nul\n", 8)}, {std::string("nul\0nul", 7)}},
    };
    for (const auto& row : rows) {
        Output output;
        for (const auto& read : row.reads) output.read(read);
        EXPECT_EQ(output.lines, row.expected);
    }
}

TEST(ScriptLineReader, dropsALineThatIsTooLongWhole) {
    for (const std::size_t piece : {1'000UL, 65'536UL, 300'000UL}) {
        Output output;
        output.read("before\n");
        for (std::size_t length = 0; length < 300'000; length += piece) output.read(std::string(piece, 'x'));
        output.read("its end\nafter\n");
        EXPECT_EQ(output.lines, (Lines{"before", "after"})) << piece;
    }
    Output output;
    output.read(std::string(ScriptLineReader::longestLine, 'x') + "\n");
    EXPECT_EQ(output.lines.size(), 1U);
}

TEST(ScriptLineReader, isForgottenInTheMiddleOfAPiece) {
    Output output;
    output.lastBeforeClear = "two";
    output.read("one\ntwo\nthree\nfour\xC3");
    output.read("five\n");
    EXPECT_EQ(output.lines, (Lines{"one", "two", "five"}));
}

}  // namespace
}  // namespace orbinex
