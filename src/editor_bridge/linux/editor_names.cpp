#include "editor_bridge/linux/editor_names.h"

#include <algorithm>
#include <array>
#include <vector>

namespace orbinex {

namespace {

struct Editor {
    RunningApplication application;
    /// In lower case. Wine gives windows the name of their program as the class.
    std::vector<std::string_view> names;
};

/// "logic" alone would be a logic analyser's program.
const std::array<Editor, 10>& editors() {
    static const std::array<Editor, 10> table{{
        {{"com.blackmagic-design.DaVinciResolve", "DaVinci Resolve"},
         {"resolve", "davinci resolve", "davinciresolve", "davinci-resolve"}},
        {{"com.apple.logic10", "Logic Pro"}, {"logic pro", "logic pro x", "logicpro"}},
        {{"com.apple.FinalCut", "Final Cut Pro"}, {"final cut pro", "finalcutpro"}},
        {{"com.avid.ProTools", "Pro Tools"}, {"pro tools", "protools"}},
        {{"com.adobe.PremierePro", "Adobe Premiere Pro"},
         {"adobe premiere pro", "adobe premiere pro (beta)", "premiere pro"}},
        {{"org.ardour.Ardour", "Ardour"}, {"ardour"}},
        {{"com.harrisonaudio.Mixbus", "Mixbus"}, {"mixbus", "mixbus32c"}},
        {{"com.cockos.reaper", "REAPER"}, {"reaper"}},
        {{"com.bitwig.BitwigStudio", "Bitwig Studio"},
         {"com.bitwig.bitwigstudio", "bitwig-studio", "bitwig studio"}},
        {{"org.rncbc.qtractor", "Qtractor"}, {"qtractor", "org.rncbc.qtractor"}},
    }};
    return table;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::ranges::equal(text, lowerCase, {}, lower);
}

}  // namespace

const RunningApplication* editorNamed(std::string_view name) {
    constexpr std::string_view suffix = ".exe";
    if (name.size() > suffix.size() && equalsIgnoringCase(name.substr(name.size() - suffix.size()), suffix))
        name.remove_suffix(suffix.size());
    for (const auto& editor : editors()) {
        const bool isIt =
            std::ranges::any_of(editor.names, [&](auto known) { return equalsIgnoringCase(name, known); });
        if (isIt) return &editor.application;
    }
    return nullptr;
}

const RunningApplication* editorWithID(std::string_view bundleID) {
    const auto* const found = std::ranges::find(editors(), bundleID, [](const Editor& editor) {
        return std::string_view(editor.application.bundleID);
    });
    return found == editors().end() ? nullptr : &found->application;
}

}  // namespace orbinex
