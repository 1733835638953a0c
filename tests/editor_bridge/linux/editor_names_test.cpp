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
        // With versions, of programs and under Wine.
        {"ardour-8.4.0", "org.ardour.Ardour", "Ardour"},
        {"Waveform13", "com.tracktion.Waveform", "Waveform"},
        {"Muse4", "io.github.muse_sequencer.Muse", "MusE"},
        {"Cubase13.exe", "com.steinberg.cubase", "Cubase"},
        {"ableton live 12 suite.exe", "com.ableton.live", "Ableton Live"},
        {"Ableton Live 11.3 Lite", "com.ableton.live", "Ableton Live"},
        {"FL64.exe", "com.image-line.flstudio", "FL Studio"},
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
                             "Logic.exe", "Adobe Premiere Elements.exe", "resolve.exe.exe", "resolve2",
                             "waveform", "waveforms", "muse", "ardour-", "ardour-lua", "ableton live  suite",
                             "ableton live 12 suit", "ableton live 1x suite", "cubase#"})
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
