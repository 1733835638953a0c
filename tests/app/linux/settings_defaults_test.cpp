#include "app/linux/settings_defaults.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace orbinex {
namespace {

class SettingsDefaultsTest : public testing::Test {
  protected:
    [[nodiscard]] std::string path() const { return folder_ / "orbinex.ini"; }

    test::TemporaryFolder folder_;
};

TEST_F(SettingsDefaultsTest, areReadBackByTheNextStartAtOnce) {
    std::string anyBytes;
    for (int i = 0; i < 256; ++i) anyBytes.push_back(static_cast<char>(i));
    anyBytes += R"([{"name":"Äö, \"x\"; 100%"}])";
    bool isTold = false;
    SettingsDefaults first(path(), [&](const std::string&) { isTold = true; });
    first.setData("trustedDevices.v1", anyBytes);
    first.setString("commandKey", "süper, \"x\"");
    first.setBoolean("autoConnect", false);
    first.setBoolean("other", true);
    EXPECT_FALSE(isTold);

    // While the first one still runs: what was set is in the file.
    const SettingsDefaults second(path());
    EXPECT_EQ(second.data("trustedDevices.v1"), anyBytes);
    EXPECT_EQ(second.string("commandKey"), "süper, \"x\"");
    EXPECT_EQ(second.boolean("autoConnect"), false);
    EXPECT_EQ(second.boolean("other"), true);

    first.remove("other");
    EXPECT_EQ(SettingsDefaults(path()).boolean("other"), std::nullopt);
}

TEST_F(SettingsDefaultsTest, giveNothingForAnotherType) {
    SettingsDefaults defaults(path());
    defaults.setString("text", "words");
    defaults.setData("data", "bytes");
    EXPECT_EQ(defaults.data("text"), std::nullopt);
    EXPECT_EQ(defaults.boolean("text"), std::nullopt);
    EXPECT_EQ(defaults.string("data"), std::nullopt);
    EXPECT_EQ(defaults.boolean("missing"), std::nullopt);
}

TEST_F(SettingsDefaultsTest, surviveADamagedFile) {
    for (const std::string& text :
         {std::string("\0\xFF\xFE[[[=\n@ByteArray(", 17),
          std::string("[General]\ntrustedDevices.v1=@Variant(\\0\\0\\0\\x7f)"),
          std::string("trustedDevices.v1=@ByteArray(abc"), std::string("autoConnect=maybe\ncommandKey=a, b"),
          std::string(200'000, '[')}) {
        folder_.write("orbinex.ini", text);
        SettingsDefaults defaults(path());
        EXPECT_EQ(defaults.boolean("autoConnect"), std::nullopt);
        EXPECT_EQ(defaults.string("commandKey"), std::nullopt);
        (void)defaults.data("trustedDevices.v1");
        defaults.setData("trustedDevices.v1", "[]");
        EXPECT_EQ(SettingsDefaults(path()).data("trustedDevices.v1"), "[]");
    }
}

TEST_F(SettingsDefaultsTest, stayInMemoryWhenTheyCannotBeStoredWhichIsToldOnce) {
    folder_.write("file", "x");
    std::vector<std::string> told;
    SettingsDefaults defaults(folder_ / "file/orbinex.ini",
                              [&](const std::string& file) { told.push_back(file); });
    EXPECT_TRUE(told.empty()) << "nothing is lost yet";
    defaults.setBoolean("autoConnect", false);
    defaults.remove("other");
    EXPECT_EQ(defaults.boolean("autoConnect"), false);
    EXPECT_EQ(told, std::vector<std::string>{folder_ / "file/orbinex.ini"});
}

}  // namespace
}  // namespace orbinex
