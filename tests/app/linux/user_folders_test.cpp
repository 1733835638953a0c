#include "app/linux/user_folders.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "support/environment_variable.h"

namespace orbinex {
namespace {

TEST(UserFolders, areWhereTheEnvironmentSays) {
    using Value = std::optional<std::string>;
    const struct {
        Value home, config, data;
        std::string expectedHome, expectedConfig, expectedData;
    } rows[] = {
        {"/home/ada", {}, {}, "/home/ada", "/home/ada/.config", "/home/ada/.local/share"},
        {"/home/ada//", "/c/", "/d", "/home/ada", "/c", "/d"},
        // What is relative counts as unset.
        {"/home/ada", "c", "", "/home/ada", "/home/ada/.config", "/home/ada/.local/share"},
    };
    for (const auto& row : rows) {
        const test::EnvironmentVariable home("HOME", row.home);
        const test::EnvironmentVariable config("XDG_CONFIG_HOME", row.config);
        const test::EnvironmentVariable data("XDG_DATA_HOME", row.data);
        const auto folders = UserFolders::fromEnvironment();
        EXPECT_EQ(folders.home, row.expectedHome);
        EXPECT_EQ(folders.config, row.expectedConfig);
        EXPECT_EQ(folders.data, row.expectedData);
    }
    const test::EnvironmentVariable home("HOME", {});
    EXPECT_TRUE(UserFolders::fromEnvironment().home.starts_with('/')) << "as the list of users has it";
}

}  // namespace
}  // namespace orbinex
