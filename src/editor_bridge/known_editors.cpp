#include "editor_bridge/known_editors.h"

#include <algorithm>
#include <string>

#include "base/text.h"

namespace orbinex {

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::ranges::equal(text, lowerCase, {}, lower);
}

bool isVersion(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos;
}

/// `known` is one of KnownEditor::names.
bool isCalled(std::string_view name, std::string_view known) {
    const auto version = known.find('#');
    if (version == std::string_view::npos) return equalsIgnoringCase(name, known);
    const auto before = known.substr(0, version);
    const auto after = known.substr(version + 1);
    if (name.size() < before.size() + after.size()) return false;
    const auto rest = name.substr(before.size());
    return equalsIgnoringCase(name.substr(0, before.size()), before) &&
           equalsIgnoringCase(rest.substr(rest.size() - after.size()), after) &&
           isVersion(rest.substr(0, rest.size() - after.size()));
}

}  // namespace

/// Of a workstation that is not among them, faders that it reports would not be taken for the session's.
/// "logic" alone would be a logic analyser's program, and many a program is called "waveform" or "muse".
std::span<const KnownEditor> knownEditors() {
    static const std::vector<KnownEditor> editors{
        {{std::string(resolveBundleID), "DaVinci Resolve"},
         {"resolve", "davinci resolve", "davinciresolve", "davinci-resolve"}},
        {{"com.apple.logic10", "Logic Pro"}, {"logic pro", "logic pro x", "logicpro"}},
        {{"com.apple.FinalCut", "Final Cut Pro"}, {"final cut pro", "finalcutpro"}},
        {{"com.avid.ProTools", "Pro Tools"}, {"pro tools", "protools"}},
        {{"com.adobe.PremierePro", "Adobe Premiere Pro"},
         {"adobe premiere pro", "adobe premiere pro (beta)", "premiere pro"}},
        // Made for Linux.
        {{"org.ardour.Ardour", "Ardour"}, {"ardour", "ardour-#"}, true},
        {{"com.harrisonaudio.Mixbus", "Mixbus"}, {"mixbus", "mixbus32c"}, true},
        {{"com.cockos.reaper", "REAPER"}, {"reaper"}, true},
        {{"com.bitwig.BitwigStudio", "Bitwig Studio"},
         {"com.bitwig.bitwigstudio", "bitwig-studio", "bitwig studio"},
         true},
        {{"com.tracktion.Waveform", "Waveform"}, {"waveform#"}, true},
        {{"com.renoise.Renoise", "Renoise"}, {"renoise", "renoise-#"}, true},
        {{"org.rncbc.qtractor", "Qtractor"}, {"qtractor", "org.rncbc.qtractor"}, true},
        {{"org.zrythm.Zrythm", "Zrythm"}, {"zrythm", "org.zrythm.zrythm"}, true},
        {{"com.rosegardenmusic.rosegarden", "Rosegarden"},
         {"rosegarden", "com.rosegardenmusic.rosegarden"},
         true},
        {{"io.github.muse_sequencer.Muse", "MusE"}, {"muse#"}, true},
        {{"io.lmms.LMMS", "LMMS"}, {"lmms", "io.lmms.lmms"}, true},
        // Met under Wine.
        {{"com.ableton.live", "Ableton Live"},
         {"ableton live", "ableton live # suite", "ableton live # standard", "ableton live # intro",
          "ableton live # lite", "ableton live # trial", "ableton live # beta"},
         true},
        {{"com.steinberg.cubase", "Cubase"}, {"cubase", "cubase#"}, true},
        {{"com.steinberg.nuendo", "Nuendo"}, {"nuendo", "nuendo#"}, true},
        {{"com.presonus.studioone", "Studio One"}, {"studio one"}, true},
        {{"com.image-line.flstudio", "FL Studio"}, {"fl64", "fl studio"}, true},
    };
    return editors;
}

const KnownEditor* editorWithin(std::string_view bundleID) {
    const auto isIt = [&](const KnownEditor& editor) {
        return containsIgnoringCase(bundleID, editor.application.bundleID);
    };
    const auto found = std::ranges::find_if(knownEditors(), isIt);
    return found == knownEditors().end() ? nullptr : &*found;
}

const RunningApplication* editorNamed(std::string_view name) {
    constexpr std::string_view suffix = ".exe";
    if (name.size() > suffix.size() && equalsIgnoringCase(name.substr(name.size() - suffix.size()), suffix))
        name.remove_suffix(suffix.size());
    for (const auto& editor : knownEditors()) {
        if (std::ranges::any_of(editor.names, [&](auto known) { return isCalled(name, known); }))
            return &editor.application;
    }
    return nullptr;
}

const RunningApplication* editorWithID(std::string_view bundleID) {
    for (const auto& editor : knownEditors()) {
        if (editor.application.bundleID == bundleID) return &editor.application;
    }
    return nullptr;
}

bool isResolveID(std::string_view bundleID) {
    return bundleID.size() == resolveBundleID.size() && containsIgnoringCase(bundleID, resolveBundleID);
}

bool isResolve(const RunningApplication& application) {
    return isResolveID(application.bundleID) ||
           containsIgnoringCase(application.localizedName, "DaVinci Resolve");
}

}  // namespace orbinex
