// Who may include whom. The picture of these rules is in docs/architecture.md.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

struct Rule {
    /// Folders of src/ whose headers may be included beside the folder's own.
    Names folders;
    /// Libraries, by the first part of the header's name, beside the C++ standard library.
    Names libraries;
};

/// Folders that know no operating system and no toolkit. Only audio/background has threads and a clock.
const std::map<std::string, Rule> logic{
    {"base", {{}, {"utf8proc.h"}}},
    {"protocol", {{"base"}, {"nlohmann"}}},
    {"trust", {{"base"}, {"nlohmann"}}},
    {"input", {{"protocol", "base"}, {}}},
    {"audio", {{"protocol", "base"}, {"kissfft"}}},
    {"audio/background", {{"audio"}, {}}},
    {"editor_bridge", {{"audio", "protocol", "base"}, {}}},
    {"link", {{"editor_bridge", "trust", "protocol", "base"}, {}}},
    {"app", {{"link", "editor_bridge", "input", "trust", "protocol", "base"}, {}}},
    {"sim", {{"app", "link", "editor_bridge", "audio", "input", "protocol", "base"}, {}}},
};

/// Folders of adapters, which may include any library, and of the project the port's folder and what that
/// knows.
const std::map<std::string, Names> adapters{
    {"input/x11", {"input", "protocol", "base"}},
    {"input/uinput", {"input"}},
    {"audio/linux", {"audio", "audio/background"}},
    {"audio/sndfile", {"audio"}},
    {"audio/ffmpeg", {"audio"}},
    {"audio/codec", {"audio", "audio/sndfile", "audio/ffmpeg"}},
    {"editor_bridge/linux", {"editor_bridge", "base"}},
    {"editor_bridge/midi", {"editor_bridge", "base"}},
    {"link/bluez", {"link", "protocol", "base"}},
    {"app/x11", {"app", "input/x11"}},
    {"ui", {"app", "link", "trust", "base"}},
    {"app/linux",
     {"app", "link", "editor_bridge", "editor_bridge/linux", "editor_bridge/midi", "audio/background",
      "audio/codec", "audio/linux", "base"}},
    {"program", {"app/linux", "ui"}},
};

/// The one file that puts everything together.
const std::string compositionRoot = "program/main.cpp";

std::string folderOf(const std::string& path) {
    return fs::path(path).parent_path().generic_string();
}
std::string firstPart(const std::string& path) {
    return path.substr(0, path.find('/'));
}

bool isStandardHeader(const std::string& header) {
    return std::ranges::all_of(
        header, [](char c) { return (c >= 'a' && c <= 'z') || c == '_' || (c >= '0' && c <= '9'); });
}

/// The complaint about one include of a file, or nothing. Both paths are relative to src/.
std::string complaint(const std::string& file, const std::string& header, bool isOurs) {
    const std::string folder = folderOf(file);
    if (file == compositionRoot) return {};
    const auto adapter = adapters.find(folder);
    const auto rule = logic.find(folder);
    if (adapter == adapters.end() && rule == logic.end()) return file + ": a folder without a rule";
    if (!isOurs) {
        const bool isAllowed = adapter != adapters.end() || isStandardHeader(header) ||
                               rule->second.libraries.contains(firstPart(header));
        return isAllowed ? "" : file + " includes <" + header + ">";
    }
    const std::string from = folderOf(header);
    const Names& allowed = adapter != adapters.end() ? adapter->second : rule->second.folders;
    return from == folder || allowed.contains(from) ? "" : file + " includes \"" + header + "\"";
}

std::vector<std::string> complaints(const std::string& file, std::ifstream& text) {
    std::vector<std::string> result;
    for (std::string line; std::getline(text, line);) {
        if (!line.starts_with("#include ")) continue;
        const bool isOurs = line[9] == '"';
        const auto end = line.find(isOurs ? '"' : '>', 10);
        if (auto found = complaint(file, line.substr(10, end - 10), isOurs); !found.empty())
            result.push_back(found);
    }
    return result;
}

TEST(IncludeRules, holdInEveryFile) {
    std::vector<std::string> found;
    int files = 0;
    const fs::path root = ORBINEX_SOURCE_FOLDER;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp") continue;
        std::ifstream text(entry.path());
        std::ranges::move(complaints(entry.path().lexically_relative(root).generic_string(), text),
                          std::back_inserter(found));
        ++files;
    }
    EXPECT_GT(files, 50) << "the sources were not found";
    for (const auto& line : found) ADD_FAILURE() << line;
}

}  // namespace
