// What a person reads stands in the sources once, so that it can only be changed everywhere.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

namespace fs = std::filesystem;

/// The string literals of a source file, adjacent ones joined, without those in comments and includes.
std::vector<std::string> literals(const std::string& source) {
    static const std::regex token(R"re(//[^\n]*|#include[^\n]*|"((?:[^"\\\n]|\\.)*)")re");
    std::vector<std::string> found;
    auto end = source.cbegin();
    for (std::sregex_iterator it(source.begin(), source.end(), token), none; it != none; ++it) {
        if (!(*it)[1].matched) continue;
        const bool isAdjacent =
            std::all_of(end, (*it)[0].first, [](unsigned char c) { return std::isspace(c) != 0; });
        if (found.empty() || !isAdjacent) found.emplace_back();
        found.back() += (*it)[1].str();
        end = (*it)[0].second;
    }
    return found;
}

/// Names that others have given.
const std::set<std::string> names{"DaVinci Resolve", "URW Gothic", "No value"};

TEST(Texts, ofTwoWordsStandInTheSourcesOnce) {
    static const std::regex twoWords("[A-Za-z]\\S* +\\S*[A-Za-z]");
    std::map<std::string, int> count;
    for (const auto& entry : fs::recursive_directory_iterator(ORBINEX_SOURCE_FOLDER)) {
        const auto extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp" && extension != ".qml") continue;
        // What bluetoothd and the kernel say.
        if (entry.path().filename() == "bluez_errors.cpp") continue;
        std::ostringstream text;
        text << std::ifstream(entry.path()).rdbuf();
        for (const auto& literal : literals(text.str()))
            if (std::regex_search(literal, twoWords)) ++count[literal];
    }
    EXPECT_GT(count.size(), 200u);
    for (const auto& [text, times] : count) EXPECT_TRUE(times == 1 || names.contains(text)) << text;
}

TEST(Texts, areReadRightly) {
    EXPECT_EQ(literals("#include \"a/b.h\"\n// \"no\"\nf(\"one \"\n  \"two\", \"one\"); g(\"one\");"),
              (std::vector<std::string>{"one two", "one", "one"}));
}

}  // namespace
}  // namespace orbinex
