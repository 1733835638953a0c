#include "editor_bridge/linux/editor_names.h"

#include <string>

#include <gtest/gtest.h>

#include "editor_bridge/editor_identity.h"
#include "editor_bridge/linux/program_name.h"

namespace orbinex::test {
namespace {

TEST(EditorNames, areThoseOfProgramsAndWindowsOfTheEditors) {
    const struct {
        const char* name;
        const char* bundleID;
        const char* localizedName;
    } rows[] = {
        {"resolve", "com.blackmagic-design.DaVinciResolve", "DaVinci Resolve"},
        {"Resolve", "com.blackmagic-design.DaVinciResolve", "DaVinci Resolve"},
        {"Resolve.exe", "com.blackmagic-design.DaVinciResolve", "DaVinci Resolve"},
        {"Logic Pro X", "com.apple.logic10", "Logic Pro"},
        {"Final Cut Pro", "com.apple.FinalCut", "Final Cut Pro"},
        {"ProTools.EXE", "com.avid.ProTools", "Pro Tools"},
        {"protools.exe", "com.avid.ProTools", "Pro Tools"},
        {"adobe premiere pro.exe", "com.adobe.PremierePro", "Adobe Premiere Pro"},
        {"Ardour", "org.ardour.Ardour", "Ardour"},
        {"Mixbus", "com.harrisonaudio.Mixbus", "Mixbus"},
        {"REAPER", "com.cockos.reaper", "REAPER"},
        {"com.bitwig.BitwigStudio", "com.bitwig.BitwigStudio", "Bitwig Studio"},
        {"qtractor", "org.rncbc.qtractor", "Qtractor"},
    };
    for (const auto& row : rows) {
        const auto* editor = editorNamed(row.name);
        ASSERT_NE(editor, nullptr) << row.name;
        EXPECT_EQ(*editor, (RunningApplication{row.bundleID, row.localizedName})) << row.name;
        EXPECT_EQ(knownEditor(editor->bundleID), row.bundleID);
        EXPECT_EQ(editorWithID(row.bundleID), editor);
    }
}

TEST(EditorNames, areNotThoseOfOtherPrograms) {
    for (const char* name : {"", ".exe", "resolvectl", "systemd-resolved", "resolve-helper", "logic",
                             "Logic.exe", "Adobe Premiere Elements.exe", "resolve.exe.exe"})
        EXPECT_EQ(editorNamed(name), nullptr) << name;
    EXPECT_EQ(editorWithID("resolve"), nullptr);
}

TEST(ProgramName, isTheFileNameOfTheExecutable) {
    EXPECT_EQ(programOfLink("/opt/resolve/bin/resolve"), "resolve");
    EXPECT_EQ(programOfLink("/opt/resolve/bin/resolve (deleted)"), "resolve");
    EXPECT_EQ(programOfLink(""), "");
    EXPECT_EQ(programOfArgument("C:\\Program Files\\Avid\\Pro Tools\\ProTools.exe"), "ProTools.exe");
    EXPECT_EQ(programOfArgument(std::string("/home/me/resolve.exe\0--flag/x", 29)), "resolve.exe");
    EXPECT_EQ(programOfArgument(""), "");
}

}  // namespace
}  // namespace orbinex::test
