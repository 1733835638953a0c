#include "app/linux/computer_name.h"

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(ComputerName, isReadFromMachineInfoAsAShellWould) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"PRETTY_HOSTNAME=\"Edit Suite 2\"\nICON_NAME=computer\n", "Edit Suite 2"},
        {"ICON_NAME=x\nPRETTY_HOSTNAME=plain", "plain"},
        {"PRETTY_HOSTNAME='Anna'\"'\"'s PC'", "Anna's PC"},
        {"PRETTY_HOSTNAME=\"a \\\"b\\\" \\\\ c\"", "a \"b\" \\ c"},
        {"PRETTY_HOSTNAME=one two", "one"},
        {"PRETTY_HOSTNAME=\"never closed", "never closed"},
        {"PRETTY_HOSTNAME=first\nPRETTY_HOSTNAME=last\n", "last"},
        {"PRETTY_HOSTNAME=\xFFx", "\xEF\xBF\xBDx"},
        {"XPRETTY_HOSTNAME=no\n# PRETTY_HOSTNAME=no", ""},
        {"PRETTY_HOSTNAME=", ""},
        {"PRETTY_HOSTNAME=\\", "\\"},
        {"", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(prettyHostname(row.text), row.expected) << row.text;
}

}  // namespace
}  // namespace orbinex
