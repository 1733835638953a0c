#include "editor_bridge/linux/editor_names.h"

#include <algorithm>

#include "editor_bridge/known_editors.h"

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

}  // namespace orbinex
