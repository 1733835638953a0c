#include "app/linux/desktop_entry.h"

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
        const auto line = execLine(arguments);
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
        const auto value = desktopEntryValue("[Desktop Entry]\n" + line, "Exec");
        ASSERT_TRUE(value);
        EXPECT_EQ(execArguments(*value), arguments) << line;
    }
    EXPECT_EQ(execLine({"/usr/bin/orbinex", "--at-login"}), "Exec=/usr/bin/orbinex --at-login\n");
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
