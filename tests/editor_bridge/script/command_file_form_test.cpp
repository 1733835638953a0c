// Whatever lies where the command file should be.

#include <fstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "script_run.h"

namespace orbinex::test {
namespace {

using Lines = std::vector<std::string>;
namespace fs = std::filesystem;

class CommandFileForm : public testing::TestWithParam<std::string> {
  protected:
    ScriptRun script{GetParam()};
    const std::string mute = R"(timeline:SetTrackEnable("audio", 2, false))";
    const std::string unmute = R"(timeline:SetTrackEnable("audio", 2, true))";
};

TEST_P(CommandFileForm, ofTextMayBeAny) {
    const struct {
        const char* what;
        std::string content;
        Lines calls;
    } rows[] = {
        {"lines as on other systems", "MUTE|2|0\r\n\r\nMUTE|2|1\r\n", {mute, unmute}},
        {"no end of line", "MUTE|2|0", {mute}},
        {"empty", "", {}},
        {"only ends of lines", "\n\n\r\n", {}},
        {"NUL bytes", std::string("\0MUTE|2|1\nMUTE|2|0\n\0", 20), {mute}},
        {"no text", "\xFF\xFE|\x80\nMUTE|2|0\n", {mute}},
        {"only separators", "||||\nMUTE|2|0\n", {mute}},
        {"a long line", std::string(100'000, 'x') + "\nMUTE|2|0\n", {mute}},
        {"many lines",
         [] {
             std::string all;
             for (int i = 0; i < 20'000; ++i) all += "NOTHING|1|2\n";
             return all + "MUTE|2|0\n";
         }(),
         {mute}},
    };
    for (const auto& row : rows) {
        script.editor.forgetCalls();
        script.command(row.content);
        EXPECT_EQ(script.run(2).size(), 4U) << row.what;
        EXPECT_EQ(script.editor.calls(), row.calls) << row.what;
        EXPECT_FALSE(fs::exists(script.commandFile)) << row.what;
    }
}

TEST_P(CommandFileForm, thatIsTooLongIsThrownAway) {
    script.command("MUTE|2|0\n");
    fs::resize_file(script.commandFile, 100'000'000);
    EXPECT_EQ(script.run(2).size(), 4U);
    EXPECT_EQ(script.editor.calls(), Lines{});
    EXPECT_FALSE(fs::exists(script.commandFile));
}

TEST_P(CommandFileForm, thatIsNoFileHoldsNothingUp) {
    fs::create_directory(script.commandFile);
    std::ofstream(script.commandFile / "inside") << "x";
    EXPECT_EQ(script.run(2).size(), 4U) << "a folder";
    EXPECT_TRUE(fs::exists(script.commandFile / "inside"));
    fs::remove_all(script.commandFile);

    ASSERT_EQ(::mkfifo(script.commandFile.c_str(), 0600), 0);
    EXPECT_EQ(script.run(2).size(), 4U) << "a pipe";
    fs::remove(script.commandFile);

    fs::create_symlink("/nonexistent/file", script.commandFile);
    EXPECT_EQ(script.run(2).size(), 4U) << "a link to nowhere";
    fs::remove(script.commandFile);

    const auto precious = script.editor.path() / "precious";
    std::ofstream(precious) << "os.exit(7)\n";
    fs::create_symlink(precious, script.commandFile);
    EXPECT_EQ(script.run(2).size(), 4U) << "a link to a file";
    EXPECT_EQ(fs::file_size(precious), 11U);
    EXPECT_FALSE(fs::is_symlink(script.commandFile));

    script.command("MUTE|2|0\n");
    script.run(2);
    EXPECT_EQ(script.editor.calls(), Lines{mute}) << "and the next command is carried out";
}

/// Another user's in a folder whose files only their owners may move.
TEST_P(CommandFileForm, thatCannotBeRemovedIsNotObeyed) {
    script.command("MUTE|2|0\n");
    EXPECT_EQ(script.run(2, "os.rename = function() end\nos.remove = os.rename\n").size(), 4U);
    EXPECT_EQ(script.editor.calls(), Lines{});
    EXPECT_TRUE(fs::exists(script.commandFile));
}

TEST_P(CommandFileForm, mayHaveAnyName) {
    const auto folder = script.editor.path() / "it's \"a\\b\"\n9 ]] .. os.exit(7) --";
    fs::create_directory(folder);
    script.commandFile = folder / "commands";
    script.command("MUTE|2|0\n");
    EXPECT_EQ(script.run(2).size(), 4U);
    EXPECT_EQ(script.editor.calls(), Lines{mute});
}

TEST_P(CommandFileForm, mayHaveSomethingWhereItIsTaken) {
    fs::create_directory(script.commandFile.string() + ".taken");
    script.command("MUTE|2|0\n");
    EXPECT_EQ(script.run(2).size(), 4U);
    EXPECT_EQ(script.editor.calls(), Lines{mute});
    EXPECT_FALSE(fs::exists(script.commandFile));
}

INSTANTIATE_TEST_SUITE_P(OnBothKindsOfLua, CommandFileForm, testing::ValuesIn(scriptHosts()),
                         [](const auto& host) {
                             return std::filesystem::path(host.param).filename().string();
                         });

}  // namespace
}  // namespace orbinex::test
