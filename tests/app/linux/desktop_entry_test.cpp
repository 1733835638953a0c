#include "app/linux/desktop_entry.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

using Arguments = std::vector<std::string>;

TEST(DesktopEntry, givesTheValueOfAKeyOfItsOwnGroup) {
    const std::string text =
        "# Name=comment\nName=before\n[Desktop Action open]\nName=action\n[Desktop Entry]\n"
        " Name = My \\sphone\\\\ \nName=second\nEmpty=\nName[de]=Telefon\nHidden=true\nOff=TRUE\r\n"
        "List=GNOME;KDE;;\n[Other]\nLast=x\nnonsense";
    EXPECT_EQ(desktopEntryValue(text, "Name"), "My  phone\\");
    EXPECT_EQ(desktopEntryValue(text, "Empty"), "");
    EXPECT_EQ(desktopEntryValue(text, "Last"), std::nullopt);
    EXPECT_EQ(desktopEntryFlag(text, "Hidden"), true);
    EXPECT_EQ(desktopEntryFlag(text, "Off"), std::nullopt);
    EXPECT_EQ(desktopEntryFlag(text, "None"), std::nullopt);
    EXPECT_EQ(desktopEntryList(text, "List"), (Arguments{"GNOME", "KDE"}));
    for (const std::string hostile : {"", "[Desktop Entry]", "[Desktop Entry]\nName", "[Desktop Entry]\n=x",
                                      "\xff\xfe[Desktop Entry]\n", "[[Desktop Entry]\nName=x"})
        EXPECT_EQ(desktopEntryValue(hostile, "Name"), std::nullopt) << hostile;
    EXPECT_EQ(desktopEntryValue("[Desktop Entry]\nName=a\\", "Name"), "a\\");
}

TEST(DesktopEntry, startsJustTheArgumentsThatWereWritten) {
    for (const auto& program :
         {"/usr/bin/orbinex", "/home/ada/My Programs/Orbinex.AppImage", "/a\"b'c`d$e\\f", "/100%/%f %%",
          "/x; rm -rf ~", "/tab\there", "/line\nbreak\nExec=evil", "/sch\xc3\xb6n", "/a=b", ""}) {
        const Arguments arguments{program, "--at-login"};
        const auto text = withDesktopEntryValue("[Desktop Entry]\n", "Exec", execValue(arguments));
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
        const auto value = desktopEntryValue(text, "Exec");
        ASSERT_TRUE(value);
        EXPECT_EQ(execArguments(*value), arguments) << text;
    }
    EXPECT_EQ(execValue({"/usr/bin/orbinex", "--at-login"}), "/usr/bin/orbinex --at-login");
}

TEST(DesktopEntry, changesOneValueAndNothingElse) {
    const struct {
        const char* before;
        const char* value;
        const char* after;
    } rows[] = {
        {"[Desktop Entry]\nA=1\nKey = old\r\nKey[de]=alt\n", "new",
         "[Desktop Entry]\nA=1\nKey=new\nKey[de]=alt\n"},
        {"[Desktop Entry]\nKey=old", " a\\b\n ", "[Desktop Entry]\nKey=\\sa\\\\b\\n\\s"},
        {"# Key=x\n[Other]\nKey=1\n[Desktop Entry]\nA=1\n[Desktop Action x]\nKey=2\n", "new",
         "# Key=x\n[Other]\nKey=1\n[Desktop Entry]\nKey=new\nA=1\n[Desktop Action x]\nKey=2\n"},
        {"[Desktop Entry]", "new", "[Desktop Entry]\nKey=new"},
        {"Key=old\n", "new", "Key=old\n"},
        {"", "new", ""},
    };
    EXPECT_EQ(desktopEntryValue(withDesktopEntryValue("[Desktop Entry]", "Key", " a\\b\n "), "Key"),
              " a\\b\n ");
    for (const auto& row : rows) {
        const auto after = withDesktopEntryValue(row.before, "Key", row.value);
        EXPECT_EQ(after, row.after);
    }
}

TEST(DesktopEntry, readsCommandLinesOfAnyOrigin) {
    EXPECT_EQ(execArguments("  orbinex   --x  "), (Arguments{"orbinex", "--x"}));
    EXPECT_EQ(execArguments("\"a b\"c d"), (Arguments{"a bc", "d"}));
    EXPECT_EQ(execArguments("\"\" \"open"), (Arguments{"", "open"}));
    EXPECT_EQ(execArguments("\"x\\"), Arguments{"x\\"});
    EXPECT_TRUE(execArguments("").empty());
}

}  // namespace
}  // namespace orbinex
