#include "script_run.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

#include <poll.h>
#include <unistd.h>

#include "editor_bridge/bridge_script.h"
#include "editor_bridge/linux/child_process.h"

namespace orbinex::test {

namespace {

constexpr int patience = 20'000;

std::filesystem::path newFolder() {
    std::string name = std::filesystem::temp_directory_path() / "orbinex-script-XXXXXX";
    return ::mkdtemp(name.data()) ? name : "";
}

/// Up to its end; empty when that does not come.
std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    pollfd readable{descriptor, POLLIN, 0};
    while (::poll(&readable, 1, patience) == 1) {
        const auto size = ::read(descriptor, buffer.data(), buffer.size());
        if (size <= 0) return text;
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
    return {};
}

}  // namespace

std::vector<std::string> scriptHosts() {
    std::istringstream names(ORBINEX_SCRIPT_HOSTS);
    std::vector<std::string> result;
    for (std::string name; names >> name;) result.push_back(name);
    return result;
}

ScriptRun::ScriptRun(std::string host)
    : editor(newFolder()), commandFile(editor.path() / "commands.txt"), host_(std::move(host)) {
    editor.open(session());
    editor.seek(86'450);
}

ScriptRun::~ScriptRun() {
    std::error_code ignored;
    std::filesystem::remove_all(editor.path(), ignored);
}

EditorSession ScriptRun::session() {
    EditorSession session;
    session.tracks = {
        {.name = "Dialogue",
         .clips = {{.name = "Take 1",
                    .start = 86'400,
                    .finish = 86'500,
                    .path = "/media/take 1.wav",
                    .sourceStart = 12},
                   {.name = "Take 2", .start = 86'600, .finish = 86'700}}},
        {.name = "Music"},
    };
    return session;
}

std::vector<std::string> ScriptRun::run(int rounds, const std::string& before) {
    ::setenv("ORBINEX_EDITOR_FOLDER", editor.path().c_str(), 1);
    ::setenv("ORBINEX_EDITOR_ROUNDS", std::to_string(rounds).c_str(), 1);
    auto launched =
        ChildProcess::launch(host_, {"-l", "lua", "-x", before + bridgeScript(commandFile.string())});
    if (!launched) return {"the host cannot be started"};
    std::istringstream text(readAll(launched->output.get()));
    if (launched->process.waitForEnd(std::chrono::milliseconds(patience))) launched->process.reap();
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

void ScriptRun::command(const std::string& content) const {
    std::ofstream(commandFile, std::ios::binary | std::ios::app) << content;
}

}  // namespace orbinex::test
