#include "editor_bridge/known_editors.h"

#include <optional>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(EditorIdentity, isFoundInsideABundleIdentifier) {
    const std::pair<const char*, std::optional<std::string_view>> rows[] = {
        {"com.blackmagic-design.DaVinciResolve", resolveBundleID},
        {"COM.BLACKMAGIC-DESIGN.DAVINCIRESOLVE.beta", resolveBundleID},
        {"com.apple.FinalCutTrial", "com.apple.FinalCut"},
        {"com.apple.logic10", "com.apple.logic10"},
        {"x.com.avid.protools.y", "com.avid.ProTools"},
        {"com.adobe.premierepro.24", "com.adobe.PremierePro"},
        {"com.adobe.PremierePro+com.apple.logic10", "com.apple.logic10"},
        {"com.apple.logic", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [bundleID, editor] : rows) {
        const auto* const found = editorWithin(bundleID);
        EXPECT_EQ(found ? std::optional<std::string_view>(found->application.bundleID) : std::nullopt, editor)
            << bundleID;
    }
}

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

TEST(EditorNames, areToldOfAllButTheFiveThatEveryIPhoneKnows) {
    const auto editors = knownEditors();
    for (std::size_t i = 0; i < editors.size(); ++i)
        EXPECT_EQ(editors[i].isToldByName, i >= 5) << editors[i].application.localizedName;
}

TEST(EditorIdentity, ofResolveIsAnIdentifierOrAName) {
    EXPECT_TRUE(isResolve({"com.Blackmagic-Design.davinciresolve", "Anything"}));
    EXPECT_TRUE(isResolve({"", "davinci resolve Studio 19"}));
    EXPECT_FALSE(isResolve({"com.blackmagic-design.DaVinciResolve.beta", "Beta"}));
    EXPECT_FALSE(isResolve({"resolve", "Resolve"}));
    EXPECT_FALSE(isResolve({"", ""}));
}

}  // namespace
}  // namespace orbinex
