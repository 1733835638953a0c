#include "app/linux/computer_name.h"

#include <array>
#include <fstream>
#include <span>

#include <unistd.h>

#include "base/bytes.h"
#include "base/text.h"

namespace orbinex {

namespace {

std::string repaired(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return repairUTF8(ByteView(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
}

/// Takes a shell word apart: quotes go, and a backslash keeps the character after it.
std::string unquoted(std::string_view word) {
    std::string result;
    char quote = 0;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const char c = word[i];
        if (c == '\\' && quote != '\'' && i + 1 < word.size()) {
            result += word[++i];
        } else if (quote != 0 ? c == quote : (c == '"' || c == '\'')) {
            quote = quote != 0 ? '\0' : c;
        } else if (quote == 0 && (c == ' ' || c == '\t')) {
            break;
        } else {
            result += c;
        }
    }
    return result;
}

}  // namespace

std::string prettyHostname(std::string_view machineInfo) {
    constexpr std::string_view key = "PRETTY_HOSTNAME=";
    std::string name;
    for (const auto line : split(machineInfo, '\n')) {
        if (line.starts_with(key)) name = unquoted(line.substr(key.size()));
    }
    return repaired(name);
}

std::string computerName() {
    constexpr std::size_t sane = 65536;  // bytes
    if (std::ifstream file("/etc/machine-info"); file) {
        std::string text(sane, '\0');
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<std::size_t>(file.gcount()));
        if (auto name = prettyHostname(text); !name.empty()) return name;
    }
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) != 0) return {};
    return repaired(host.data());
}

}  // namespace orbinex
