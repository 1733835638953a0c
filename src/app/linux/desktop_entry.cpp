#include "app/linux/desktop_entry.h"

#include "base/text.h"

namespace orbinex {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isHeaderOf(std::string_view line, std::string_view group) {
    const auto text = trimmed(line);
    return text.size() == group.size() + 2 && text.front() == '[' && text.back() == ']' &&
           text.substr(1, group.size()) == group;
}

/// A part of the text.
std::optional<std::string_view> groupLine(std::string_view text, std::string_view group) {
    for (const auto line : split(text, '\n')) {
        if (isHeaderOf(line, group)) return line;
    }
    return std::nullopt;
}

/// A part of the text.
std::optional<std::string_view> keyLine(std::string_view text, std::string_view key,
                                        std::string_view group = desktopEntryGroup) {
    bool isInGroup = false;
    for (const auto line : split(text, '\n')) {
        if (line.starts_with('[')) isInGroup = isHeaderOf(line, group);
        const auto equals = line.find('=');
        if (isInGroup && equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key)
            return line;
    }
    return std::nullopt;
}

std::optional<std::string_view> rawValue(std::string_view text, std::string_view key) {
    const auto line = keyLine(text, key);
    if (!line) return std::nullopt;
    return trimmed(line->substr(line->find('=') + 1));
}

char unescaped(char c) {
    switch (c) {
        case 's': return ' ';
        case 'n': return '\n';
        case 't': return '\t';
        case 'r': return '\r';
        default: return c;
    }
}

std::string escapedValue(std::string_view value) {
    std::string text;
    for (const char c : value) {
        switch (c) {
            case '\\': text += "\\\\"; break;
            case '\n': text += "\\n"; break;
            case '\t': text += "\\t"; break;
            case '\r': text += "\\r"; break;
            default: text += c;
        }
    }
    // Blanks around a value are not part of it.
    if (text.starts_with(' ')) text.replace(0, 1, "\\s");
    if (text.ends_with(' ')) text.replace(text.size() - 1, 1, "\\s");
    return text;
}

bool needsQuotes(std::string_view argument) {
    return argument.empty() || argument.find_first_of(" \t\n\"'\\><~|&;$*?#()`=") != std::string_view::npos;
}

std::string quotedArgument(std::string_view argument) {
    std::string text;
    for (const char c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') text += '\\';
        if (c == '%') text += '%';
        text += c;
    }
    return needsQuotes(argument) ? '"' + text + '"' : text;
}

}  // namespace

std::optional<std::string> desktopEntryValue(std::string_view text, std::string_view key) {
    const auto raw = rawValue(text, key);
    if (!raw) return std::nullopt;
    std::string value;
    for (std::size_t i = 0; i < raw->size(); ++i) {
        const bool isEscape = (*raw)[i] == '\\' && i + 1 < raw->size();
        value += isEscape ? unescaped((*raw)[++i]) : (*raw)[i];
    }
    return value;
}

std::optional<bool> desktopEntryFlag(std::string_view text, std::string_view key) {
    const auto raw = rawValue(text, key);
    if (raw == "true") return true;
    if (raw == "false") return false;
    return std::nullopt;
}

std::vector<std::string> desktopEntryList(std::string_view text, std::string_view key) {
    std::vector<std::string> values;
    for (const auto part : split(rawValue(text, key).value_or(std::string_view()), ';')) {
        if (!part.empty()) values.emplace_back(part);
    }
    return values;
}

std::vector<std::string> execArguments(std::string_view exec) {
    std::vector<std::string> arguments;
    bool isOpen = false;  // within an argument
    bool isQuoted = false;
    for (std::size_t i = 0; i < exec.size(); ++i) {
        char c = exec[i];
        if (!isQuoted && (c == ' ' || c == '\t')) {
            isOpen = false;
            continue;
        }
        if (!isOpen) arguments.emplace_back();
        isOpen = true;
        if (c == '"') {
            isQuoted = !isQuoted;
            continue;
        }
        const bool hasNext = i + 1 < exec.size();
        if ((isQuoted && c == '\\' && hasNext) || (c == '%' && hasNext && exec[i + 1] == '%')) c = exec[++i];
        arguments.back() += c;
    }
    return arguments;
}

std::string execValue(const std::vector<std::string>& arguments) {
    std::string value;
    for (const auto& argument : arguments) value += (value.empty() ? "" : " ") + quotedArgument(argument);
    return value;
}

std::string withDesktopEntryValue(std::string_view text, std::string_view key, std::string_view value,
                                  std::string_view group) {
    const auto header = groupLine(text, group);
    if (!header) return std::string(text);
    const auto line = keyLine(text, key, group);
    // Or the empty place behind the header.
    const auto replaced = line.value_or(header->substr(header->size()));
    const auto start = static_cast<std::size_t>(replaced.data() - text.data());
    std::string changed(text.substr(0, start));
    if (!line) changed += '\n';
    changed += std::string(key) + "=" + escapedValue(value);
    return changed += text.substr(start + replaced.size());
}

}  // namespace orbinex
