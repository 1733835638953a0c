#include "editor_bridge/linux/desktop_file.h"

#include <cstdint>

#include "base/text.h"

namespace orbinex {

namespace {

constexpr std::size_t maxCharacters = 200;

std::string_view trim(std::string_view text) {
    constexpr std::string_view blank = " \t\r";
    const auto first = text.find_first_not_of(blank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

/// Undoes the backslashes that every text in such a file may have.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const char c = text[++i];
        result += c == '\\' ? '\\' : c == 's' || c == 'n' || c == 't' || c == 'r' ? ' ' : c;
    }
    return result;
}

std::string shownText(std::string_view raw) {
    const std::string bytes = unescaped(raw);
    const std::string text = repairUTF8({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    return std::string(firstCharacters(trimWhitespace(trimControlCharacters(text)), maxCharacters));
}

/// Takes the first word of a command line away from it; words may be quoted.
std::string takeWord(std::string_view& command) {
    const auto start = command.find_first_not_of(" \t");
    command.remove_prefix(start == std::string_view::npos ? command.size() : start);
    std::string word;
    bool isQuoted = false;
    std::size_t i = 0;
    for (; i < command.size(); ++i) {
        const char c = command[i];
        if (c == '"') {
            isQuoted = !isQuoted;
        } else if (isQuoted && c == '\\' && i + 1 < command.size()) {
            word += command[++i];
        } else if (!isQuoted && (c == ' ' || c == '\t')) {
            break;
        } else {
            word += c;
        }
    }
    command.remove_prefix(i);
    return word;
}

/// "env LANG=C /usr/bin/editor %F" starts "editor".
std::string programOf(const std::string& commandLine) {
    std::string_view rest = commandLine;
    for (std::string word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
        if (word == "env" || word == "/usr/bin/env" || word.find('=') != std::string::npos) continue;
        return shownText(word.substr(word.rfind('/') + 1));
    }
    return {};
}

/// How well a key names the name in this locale; 0 not at all.
int nameRank(std::string_view key, std::string_view locale) {
    if (key == "Name") return 1;
    if (!key.starts_with("Name[") || !key.ends_with("]")) return 0;
    const auto language = key.substr(5, key.size() - 6);
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (language.empty() || locale.empty()) return 0;
    if (language == locale) return 3;
    return language == locale.substr(0, locale.find('_')) ? 2 : 0;
}

}  // namespace

DesktopFile parseDesktopFile(std::string_view text, std::string_view locale) {
    DesktopFile file;
    bool isInGroup = false;
    bool isHidden = false;
    bool isOfType = false;
    int rank = 0;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto line = trim(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.starts_with('[')) {
            if (isInGroup) break;
            isInGroup = line == "[Desktop Entry]";
            continue;
        }
        const auto equals = line.find('=');
        if (!isInGroup || equals == std::string_view::npos || line.starts_with('#')) continue;
        const auto key = trim(line.substr(0, equals));
        const auto value = trim(line.substr(equals + 1));
        if (key == "Type") isOfType = value == "Application";
        if (key == "Hidden") isHidden = value == "true";
        if (key == "StartupWMClass") file.windowClass = shownText(value);
        if (key == "Exec") file.program = programOf(unescaped(value));
        if (const int found = nameRank(key, locale); found > rank) {
            rank = found;
            file.name = shownText(value);
        }
    }
    file.isApplication = isOfType && !isHidden;
    return file;
}

}  // namespace orbinex
