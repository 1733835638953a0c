#include "app/linux/settings_defaults.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

class SettingsDefaultsTest : public testing::Test {
  protected:
    SettingsDefaultsTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "orbinex-settings-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
    }
    ~SettingsDefaultsTest() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string path() const { return (folder_ / "orbinex.ini").string(); }
    void write(const std::string& text) const { std::ofstream(path(), std::ios::binary) << text; }

    std::filesystem::path folder_;
};

TEST_F(SettingsDefaultsTest, areReadBackByTheNextStartAtOnce) {
    std::string anyBytes;
    for (int i = 0; i < 256; ++i) anyBytes.push_back(static_cast<char>(i));
    anyBytes += R"([{"name":"Äö, \"x\"; 100%"}])";
    SettingsDefaults first(path());
    first.setData("trustedDevices.v1", anyBytes);
    first.setString("commandKey", "süper, \"x\"");
    first.setBoolean("autoConnect", false);
    first.setBoolean("other", true);
    EXPECT_TRUE(first.isStored());

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
    for (const auto* settings : {&defaults}) {
        EXPECT_EQ(settings->data("text"), std::nullopt);
        EXPECT_EQ(settings->boolean("text"), std::nullopt);
        EXPECT_EQ(settings->string("data"), std::nullopt);
        EXPECT_EQ(settings->boolean("missing"), std::nullopt);
    }
}

TEST_F(SettingsDefaultsTest, surviveADamagedFile) {
    for (const std::string& text :
         {std::string("\0\xFF\xFE[[[=\n@ByteArray(", 17),
          std::string("[General]\ntrustedDevices.v1=@Variant(\\0\\0\\0\\x7f)"),
          std::string("trustedDevices.v1=@ByteArray(abc"), std::string("autoConnect=maybe\ncommandKey=a, b"),
          std::string(200'000, '[')}) {
        write(text);
        SettingsDefaults defaults(path());
        EXPECT_EQ(defaults.boolean("autoConnect"), std::nullopt);
        EXPECT_EQ(defaults.string("commandKey"), std::nullopt);
        (void)defaults.data("trustedDevices.v1");
        defaults.setData("trustedDevices.v1", "[]");
        EXPECT_EQ(SettingsDefaults(path()).data("trustedDevices.v1"), "[]");
    }
}

TEST_F(SettingsDefaultsTest, stayInMemoryWhenTheyCannotBeStored) {
    const std::string blocked = (folder_ / "file").string();
    std::ofstream(blocked) << "x";
    SettingsDefaults defaults(blocked + "/orbinex.ini");
    defaults.setBoolean("autoConnect", false);
    EXPECT_EQ(defaults.boolean("autoConnect"), false);
    EXPECT_FALSE(defaults.isStored());
}

}  // namespace
}  // namespace orbinex
