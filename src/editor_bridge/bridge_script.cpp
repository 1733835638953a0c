#include "editor_bridge/bridge_script.h"

namespace orbinex {

namespace {

constexpr std::string_view placeholder = "@COMMAND_FILE@";

/// As it stands between double quotes in Lua.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && c != '"' && c != '\\') {
            result += c;
            continue;
        }
        // Three digits: the next character may be one.
        const std::string number = std::to_string(byte);
        result += '\\' + std::string(3 - number.size(), '0') + number;
    }
    return result;
}

}  // namespace

std::string bridgeScript(std::string_view commandFilePath) {
    std::string script(bridgeScriptText());
    return script.replace(script.find(placeholder), placeholder.size(), escaped(commandFilePath));
}

}  // namespace orbinex
